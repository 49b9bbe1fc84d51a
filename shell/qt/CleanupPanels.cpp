#include "shell/qt/CleanupPanels.h"

#include "shell/qt/CleanupLook.h"
#include "shell/qt/FigureText.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"
#include "shell/qt/SymbolPicture.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace vantry {

namespace {

constexpr int cardPadding = 14;
constexpr int accentWidth = 4;
constexpr int cardTextLeft = cardPadding + accentWidth + 10;
constexpr int cardTextRight = 10;
constexpr int titleGap = 3;
constexpr int detailGap = 2;
constexpr double largeTextContrast = 3;

constexpr int leastWidth = 200;

// As long as details get: there is always room for one, so that nothing moves when it comes.
const QString usualDetail = QStringLiteral("000 files shown; nothing removed automatically");

int textWidth(int width) { return width - cardTextLeft - cardTextRight; }

constexpr int noticePadding = 10;
constexpr int noticeSymbolSide = 20;
constexpr int noticeTextLeft = 14 + noticeSymbolSide + 12;
constexpr int noticeTextRight = 16;

} // namespace

SummaryCard::SummaryCard(const QtAppearance& appearance, QWidget* parent)
    : QWidget(parent),
      appearance_(appearance),
      titleFont_(qFont(cleanupStrongFont, *this)),
      valueFont_(qFont(cleanupFigureFont, *this)),
      detailFont_(qFont(cleanupDetailFont, *this)) {
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Minimum); // as wide as the others, whatever is written on it
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void SummaryCard::setContent(const SummaryCardContent& content) {
    if (content == content_)
        return;
    content_ = content;
    setAccessibleName(qString(content.title + ": " + content.value));
    setAccessibleDescription(qString(content.detail));
    updateGeometry();
    update();
}

int SummaryCard::heightForWidth(int width) const {
    return 2 * cardPadding + QFontMetrics(titleFont_).height() + titleGap + QFontMetrics(valueFont_).height() +
           detailGap +
           std::max(wrappedHeight(QFontMetrics(detailFont_), usualDetail, textWidth(width)),
                    wrappedHeight(QFontMetrics(detailFont_), qString(content_.detail), textWidth(width)));
}

QSize SummaryCard::sizeHint() const { return {leastWidth, heightForWidth(std::max(leastWidth, width()))}; }

void SummaryCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const Appearance appearance = appearance_.current();
    drawCard(painter, rect(), appearance);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(roleColor(content_.color, appearance));
    painter.drawRoundedRect(QRectF(cardPadding, cardPadding + 2, accentWidth, height() - 2 * cardPadding - 4),
                            accentWidth / 2.0, accentWidth / 2.0);

    const int width = textWidth(this->width());
    int y = cardPadding;
    const auto line = [&](const QFont& font, const QColor& color, const std::string& text, int gap) {
        const QFontMetrics metrics(font);
        painter.setFont(font);
        painter.setPen(color);
        drawFigures(painter, QRectF(cardTextLeft, y, width, metrics.height()), Qt::AlignLeft,
                    metrics.elidedText(qString(text), Qt::ElideRight, width));
        y += metrics.height() + gap;
    };
    const QColor secondary = roleColor(SystemColor::secondaryLabel, appearance);
    line(titleFont_, secondary, content_.title, titleGap);
    line(valueFont_, readableColor(content_.color, appearance, largeTextContrast), content_.value, detailGap);
    painter.setFont(detailFont_);
    painter.setPen(secondary);
    painter.drawText(QRect(cardTextLeft, y, width, height() - y), Qt::TextWordWrap, qString(content_.detail));
}

NoticeBox::NoticeBox(const QtAppearance& appearance, QWidget* parent)
    : QWidget(parent),
      appearance_(appearance),
      font_(qFont(cleanupBodyFont, *this)) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void NoticeBox::setContent(const std::string& symbolName, const std::string& text) {
    if (symbolName == symbolName_ && qString(text) == text_)
        return;
    symbolName_ = symbolName;
    text_ = qString(text);
    setAccessibleName(text_);
    updateGeometry();
    update();
}

int NoticeBox::heightForWidth(int width) const {
    const int text = wrappedHeight(QFontMetrics(font_), text_, width - noticeTextLeft - noticeTextRight);
    return std::max(noticeSymbolSide, text) + 2 * noticePadding;
}

QSize NoticeBox::sizeHint() const { return {400, heightForWidth(std::max(400, width()))}; }

void NoticeBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Appearance appearance = appearance_.current();
    const QColor green = roleColor(SystemColor::green, appearance);
    QColor edge = green;
    QColor fill = green;
    edge.setAlphaF(0.55F);
    fill.setAlphaF(appearance == Appearance::dark ? 0.1F : 0.08F);
    painter.setPen(QPen(edge, 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cleanupCardRadius, cleanupCardRadius);
    drawSymbol(painter, symbolName_, QRectF(14, 0, noticeSymbolSide, height()), noticeSymbolSide, green);
    painter.setFont(font_);
    painter.setPen(roleColor(SystemColor::label, appearance));
    painter.drawText(rect().adjusted(noticeTextLeft, 0, -noticeTextRight, 0), Qt::AlignVCenter | Qt::TextWordWrap,
                     text_);
}

} // namespace vantry
