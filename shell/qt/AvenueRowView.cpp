#include "base/Text.h"
#include "shell/qt/CleanupLook.h"
#include "shell/qt/CleanupRowView.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"
#include "shell/qt/SymbolPicture.h"

#include <QPainter>
#include <QPushButton>
#include <algorithm>

namespace vantry {

namespace {

int statusLeft(int width, const CleanupRowType& type) {
    return width - cleanupCardPadding - type.buttonWidth - cleanupColumnGap - cleanupStatusWidth;
}

int textWidth(int width, const CleanupRowType& type) {
    return statusLeft(width, type) - cleanupColumnGap - cleanupTextInset;
}

struct Heights {
    int title, detail, status, usage;

    Heights(const AvenueRowContent& content, int width, const CleanupRowType& type)
        : title(wrappedHeight(type.titleMetrics, qString(content.title), textWidth(width, type))),
          detail(wrappedHeight(type.detailMetrics, qString(content.detail), textWidth(width, type))),
          status(wrappedHeight(type.strongMetrics, qString(content.status), cleanupStatusWidth)),
          usage(wrappedHeight(type.detailMetrics, qString(content.usage), cleanupStatusWidth)) {}

    [[nodiscard]] int ofText() const { return title + cleanupRowLineGap + detail; }
    [[nodiscard]] int ofStatus() const { return status + cleanupRowLineGap + usage; }
};

} // namespace

int AvenueRowView::heightFor(const Content& content, int width, const CleanupRowType& type) {
    const Heights heights(content, width, type);
    return std::max(cleanupMinimumRow, std::max(heights.ofText(), heights.ofStatus()) + 2 * cleanupRowPadding);
}

void AvenueRowView::setContent(const Content& content) {
    content_ = content;
    setAccessibleName(qString(content.title));
    setAccessibleDescription(qString(joinedTexts({content.detail, content.status, content.usage})));
    if (content.button && !button_) {
        button_ = new QPushButton(this);
        button_->setFont(qFont(cleanupBodyFont, *this));
        button_->setAutoDefault(false);
        connect(button_, &QPushButton::clicked, this, [this] {
            if (content_.button)
                actions().avenueAction(content_.button->action);
        });
        button_->setVisible(true);
    } else if (!content.button && button_) {
        button_->hide();
        std::exchange(button_, nullptr)->deleteLater();
    }
    if (button_) {
        button_->setText(qString(content.button->title));
        button_->setToolTip(plainToolTip(qString(content.button->tooltip)));
        button_->setEnabled(content.button->enabled);
        // Several avenues open the same place, so the description names the avenue.
        button_->setAccessibleDescription(qString(joinedTexts({content.title, content.button->tooltip})));
    }
    update();
}

std::vector<QWidget*> AvenueRowView::controls() const {
    return button_ ? std::vector<QWidget*>{button_} : std::vector<QWidget*>{};
}

void AvenueRowView::resizeEvent(QResizeEvent* event) {
    if (button_) {
        const int height = button_->sizeHint().height();
        button_->setGeometry(width() - cleanupCardPadding - type().buttonWidth, (this->height() - height) / 2,
                             type().buttonWidth, height);
    }
    QWidget::resizeEvent(event);
}

void AvenueRowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const CleanupRowType& fonts = type();
    drawSymbol(painter, content_.symbolName, QRectF(cleanupCardPadding, 0, cleanupSymbolSide, height()),
               cleanupSymbolSide, roleColor(SystemColor::secondaryLabel, appearance()));

    const Heights heights(content_, width(), fonts);
    const auto draw = [&](const QFont& font, const QColor& color, int x, int y, int width, int height,
                          const std::string& text) {
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(QRect(x, y, width, height), Qt::TextWordWrap, qString(text));
    };
    const QColor secondary = roleColor(SystemColor::secondaryLabel, appearance());
    const int space = textWidth(width(), fonts);
    int y = (height() - heights.ofText()) / 2;
    draw(fonts.title, roleColor(SystemColor::label, appearance()), cleanupTextInset, y, space, heights.title,
         content_.title);
    draw(fonts.detail, secondary, cleanupTextInset, y + heights.title + cleanupRowLineGap, space, heights.detail,
         content_.detail);
    const int left = statusLeft(width(), fonts);
    y = (height() - heights.ofStatus()) / 2;
    draw(fonts.strong, readableColor(content_.statusColor, appearance()), left, y, cleanupStatusWidth, heights.status,
         content_.status);
    draw(fonts.detail, secondary, left, y + heights.status + cleanupRowLineGap, cleanupStatusWidth, heights.usage,
         content_.usage);
}

} // namespace vantry
