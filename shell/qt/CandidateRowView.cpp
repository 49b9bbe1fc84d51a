#include "base/Text.h"
#include "shell/qt/CleanupLook.h"
#include "shell/qt/CleanupRowView.h"
#include "shell/qt/FigureText.h"
#include "shell/qt/QtConversions.h"
#include "shell/qt/SymbolPicture.h"

#include <QPainter>
#include <QSignalBlocker>
#include <algorithm>

namespace vantry {

namespace {

constexpr int noteGap = 3;

int amountRight(int width) { return width - cleanupRevealInset - cleanupRevealSide - cleanupRevealGap; }
int candidateTextWidth(int width) {
    return amountRight(width) - cleanupAmountWidth - cleanupAmountGap - cleanupTextInset;
}

// What screen readers say after the title.
QString descriptionOf(const CandidateRowContent& content) {
    return qString(joinedTexts({content.reason, content.note, content.sizeText, content.sizeDetail, content.badge}));
}

} // namespace

CandidateRowView::CandidateRowView(const CleanupRowType& type, const CleanupRowActions& actions, QWidget* parent)
    : CleanupRowView(type, actions, parent),
      revealButton_(new SymbolButton("magnifyingglass", this)) {
    connect(revealButton_, &QAbstractButton::clicked, this,
            [this] { this->actions().revealed(std::string(content_.identifier)); });
}

int CandidateRowView::heightFor(const Content& content, int width, const CleanupRowType& type) {
    const int space = candidateTextWidth(width);
    int height = type.titleMetrics.height() + cleanupRowLineGap +
                 wrappedHeight(type.detailMetrics, qString(content.reason), space);
    if (!content.note.empty())
        height += noteGap + wrappedHeight(type.detailMetrics, qString(content.note), space);
    return std::max(cleanupMinimumRow, height + 2 * cleanupRowPadding);
}

void CandidateRowView::setContent(const Content& content) {
    content_ = content;
    const QString identifier = qString(content.identifier);
    const QString description = descriptionOf(content);
    setAccessibleName(qString(content.title));
    setAccessibleDescription(description);
    setToolTip(plainToolTip(qString(content.tooltip)));
    if (content.symbolName.empty() && !checkBox_) {
        checkBox_ = new RowCheckBox(this);
        checkBox_->lower(); // screen readers follow the stacking order, and it comes first
        setTabOrder(checkBox_, revealButton_);
        checkBox_->setGeometry(4, 0, cleanupTextInset - 8, height());
        checkBox_->setEnabled(selectionEnabled_);
        checkBox_->setVisible(true);
        connect(checkBox_, &QCheckBox::toggled, this, &CandidateRowView::toggled);
    } else if (!content.symbolName.empty() && checkBox_) {
        checkBox_->hide();
        std::exchange(checkBox_, nullptr)->deleteLater();
    }
    if (checkBox_) {
        const QSignalBlocker silent(checkBox_);
        checkBox_->setObjectName(identifier);
        checkBox_->setAccessibleName(qString(content.selectionAccessibilityLabel));
        checkBox_->setAccessibleDescription(description);
        checkBox_->setChecked(content.selected);
    }
    revealButton_->setObjectName(identifier);
    revealButton_->setAccessibleName(qString(content.revealAccessibilityLabel));
    revealButton_->setToolTip(qString(content.revealTooltip));
    update();
}

void CandidateRowView::setSelectionEnabled(bool enabled) {
    selectionEnabled_ = enabled;
    if (checkBox_)
        checkBox_->setEnabled(enabled);
}

// The answer is a new content, in which the box may be unchanged, so the box shows the content again.
void CandidateRowView::toggled(bool isOn) {
    actions().selectionChanged(std::string(content_.identifier), isOn);
    if (checkBox_) {
        const QSignalBlocker silent(checkBox_);
        checkBox_->setChecked(content_.selected);
    }
}

std::vector<QWidget*> CandidateRowView::controls() const {
    return checkBox_ ? std::vector<QWidget*>{checkBox_, revealButton_} : std::vector<QWidget*>{revealButton_};
}

void CandidateRowView::resizeEvent(QResizeEvent* event) {
    if (checkBox_)
        checkBox_->setGeometry(4, 0, cleanupTextInset - 8, height());
    revealButton_->setGeometry(width() - cleanupRevealInset - cleanupRevealSide, (height() - cleanupRevealSide) / 2,
                               cleanupRevealSide, cleanupRevealSide);
    QWidget::resizeEvent(event);
}

void CandidateRowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const CleanupRowType& fonts = type();
    if (!content_.symbolName.empty())
        drawSymbol(painter, content_.symbolName, QRectF(cleanupCardPadding, 0, cleanupSymbolSide, height()),
                   cleanupSymbolSide - 2, roleColor(content_.badgeColor, appearance()));

    const int space = candidateTextWidth(width());
    const QString reason = qString(content_.reason);
    const QString note = qString(content_.note);
    const int reasonHeight = wrappedHeight(fonts.detailMetrics, reason, space);
    const int noteHeight = wrappedHeight(fonts.detailMetrics, note, space);
    const int textHeight =
        fonts.titleMetrics.height() + cleanupRowLineGap + reasonHeight + (note.isEmpty() ? 0 : noteGap + noteHeight);
    int y = (height() - textHeight) / 2;
    painter.setFont(fonts.title);
    painter.setPen(roleColor(SystemColor::label, appearance()));
    painter.drawText(QRect(cleanupTextInset, y, space, fonts.titleMetrics.height()), Qt::AlignVCenter,
                     fonts.titleMetrics.elidedText(qString(content_.title), Qt::ElideMiddle, space));
    y += fonts.titleMetrics.height() + cleanupRowLineGap;
    painter.setFont(fonts.detail);
    painter.setPen(roleColor(SystemColor::secondaryLabel, appearance()));
    painter.drawText(QRect(cleanupTextInset, y, space, reasonHeight), Qt::TextWordWrap, reason);
    if (!note.isEmpty())
        painter.drawText(QRect(cleanupTextInset, y + reasonHeight + noteGap, space, noteHeight), Qt::TextWordWrap,
                         note);

    const int badgeHeight = fonts.badgeMetrics.height() + 4;
    const int amountHeight = fonts.strongMetrics.height();
    const int top = (height() - amountHeight - cleanupBadgeGap - badgeHeight) / 2;
    painter.setFont(fonts.strong);
    painter.setPen(roleColor(SystemColor::label, appearance()));
    const int right = amountRight(width());
    drawFigures(painter, QRectF(right - cleanupAmountWidth, top, cleanupAmountWidth, amountHeight), Qt::AlignRight,
                qString(content_.sizeText));
    const QString badge = fonts.badgeMetrics.elidedText(qString(content_.badge), Qt::ElideRight,
                                                        cleanupAmountWidth - 2 * cleanupBadgePadding);
    const int badgeWidth = fonts.badgeMetrics.horizontalAdvance(badge) + 2 * cleanupBadgePadding;
    const QRectF capsule(right - badgeWidth, top + amountHeight + cleanupBadgeGap, badgeWidth, badgeHeight);
    QColor fill = roleColor(content_.badgeColor, appearance());
    fill.setAlphaF(appearance() == Appearance::dark ? 0.2F : 0.13F);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(capsule, badgeHeight / 2.0, badgeHeight / 2.0);
    painter.setFont(fonts.badge);
    painter.setPen(readableColor(content_.badgeColor, appearance(), 5.2)); // the badge's tint is darker than the card
    painter.drawText(capsule, Qt::AlignCenter, badge);
}

} // namespace vantry
