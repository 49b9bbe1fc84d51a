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

constexpr int cardTextLeft = cleanupCardPadding + cleanupAccentWidth + 10;
constexpr int cardTextRight = 10;
constexpr int titleGap = 3;
constexpr int detailGap = 2;
constexpr double largeTextContrast = 3;

constexpr int leastWidth = 200;

// As long as a detail usually gets. There is always room for one, so that the layout does not jump when it appears.
const QString usualDetail = QStringLiteral("000 files shown; nothing removed automatically");

int cardTextWidth(int width) { return width - cardTextLeft - cardTextRight; }

constexpr int noticeSymbolSide = 20;
constexpr int noticeTextLeft = 14 + noticeSymbolSide + 12;
constexpr int noticeTextRight = 16;
constexpr int usualNoticeWidth = 400;

} // namespace

TextPanel::TextPanel(QSizePolicy::Policy horizontal, int usualWidth, QWidget* parent)
    : QWidget(parent),
      usualWidth_(usualWidth) {
    QSizePolicy policy(horizontal, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSize TextPanel::sizeHint() const { return {usualWidth_, heightForWidth(std::max(usualWidth_, width()))}; }

SummaryCard::SummaryCard(QWidget* parent)
    : TextPanel(QSizePolicy::Ignored, leastWidth, parent), // all cards are equally wide, whatever their text
      titleFont_(qFont(cleanupStrongFont, *this)),
      valueFont_(qFont(cleanupFigureFont, *this)),
      detailFont_(qFont(cleanupDetailFont, *this)) {}

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
    return 2 * cleanupCardPadding + QFontMetrics(titleFont_).height() + titleGap + QFontMetrics(valueFont_).height() +
           detailGap +
           std::max(wrappedHeight(QFontMetrics(detailFont_), usualDetail, cardTextWidth(width)),
                    wrappedHeight(QFontMetrics(detailFont_), qString(content_.detail), cardTextWidth(width)));
}

void SummaryCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const Appearance appearance = appearanceOf(*this);
    drawCard(painter, rect(), appearance);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(roleColor(content_.color, appearance));
    painter.drawRoundedRect(
        QRectF(cleanupCardPadding, cleanupCardPadding + 2, cleanupAccentWidth, height() - 2 * cleanupCardPadding - 4),
        cleanupAccentWidth / 2.0, cleanupAccentWidth / 2.0);

    const int width = cardTextWidth(this->width());
    int y = cleanupCardPadding;
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

NoticeBox::NoticeBox(QWidget* parent)
    : TextPanel(QSizePolicy::Preferred, usualNoticeWidth, parent),
      font_(qFont(cleanupBodyFont, *this)) {}

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
    return std::max(noticeSymbolSide, text) + 2 * cleanupNoticePadding;
}

void NoticeBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Appearance appearance = appearanceOf(*this);
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
