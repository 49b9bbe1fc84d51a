#include "shell/qt/CleanupLook.h"

#include "shell/qt/QtConversions.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace vantry {

namespace {

double linear(float component) {
    const double value = static_cast<double>(component);
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

int digitWidth(const QFontMetrics& metrics) {
    int widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

bool isDigit(QChar character) { return character >= u'0' && character <= u'9'; }

// Calls `visit` with every run of other characters, and with every digit.
template <class Visit>
void forEachRun(const QString& text, Visit visit) {
    for (qsizetype begin = 0, end = 0; begin < text.size(); begin = end) {
        end = begin + 1;
        while (!isDigit(text[begin]) && end < text.size() && !isDigit(text[end]))
            ++end;
        visit(text.mid(begin, end - begin), isDigit(text[begin]));
    }
}

} // namespace

QColor roleColor(SystemColor role, Appearance appearance) { return qColor(DynamicColor{role}, appearance); }

QColor readableColor(SystemColor role, Appearance appearance, double ratio) {
    QColor color = roleColor(role, appearance);
    if (color.alpha() != 255) // a text colour, which is made for that
        return color;
    const bool dark = appearance == Appearance::dark;
    const QColor ground = cardColor(appearance);
    for (int step = 0; step < 40 && contrast(color, ground) < ratio; ++step)
        color = dark ? color.lighter(104)
                     : QColor::fromHsvF(color.hsvHueF(), color.hsvSaturationF(), color.valueF() * 0.97F);
    return color;
}

QColor cardColor(Appearance appearance) {
    return appearance == Appearance::dark ? QColor(60, 60, 62) : QColor(Qt::white);
}

void drawCard(QPainter& painter, const QRectF& rect, Appearance appearance) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(roleColor(SystemColor::separator, appearance), 1));
    painter.setBrush(cardColor(appearance));
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), cleanupCardRadius, cleanupCardRadius);
    painter.restore();
}

void drawFocusRing(QPainter& painter, const QWidget& control, const QRect& rect) {
    QStyleOptionFocusRect option;
    option.initFrom(&control);
    if (!(option.state & QStyle::State_HasFocus) || !(option.state & QStyle::State_KeyboardFocusChange))
        return;
    option.rect = rect;
    control.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, &control);
}

void drawFigures(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, const QString& text) {
    const QFontMetrics metrics = painter.fontMetrics();
    const int digit = digitWidth(metrics);
    double x = alignment & Qt::AlignRight ? rect.right() - figuresWidth(metrics, text) : rect.left();
    const double baseline = rect.top() + (rect.height() - metrics.height()) / 2 + metrics.ascent();
    forEachRun(text, [&](const QString& run, bool isFigure) {
        const int advance = metrics.horizontalAdvance(run);
        painter.drawText(QPointF(x + (isFigure ? (digit - advance) / 2.0 : 0), baseline), run);
        x += isFigure ? digit : advance;
    });
}

int figuresWidth(const QFontMetrics& metrics, const QString& text) {
    const int digit = digitWidth(metrics);
    int width = 0;
    forEachRun(text,
               [&](const QString& run, bool isFigure) { width += isFigure ? digit : metrics.horizontalAdvance(run); });
    return width;
}

int wrappedHeight(const QFontMetrics& metrics, const QString& text, int width) {
    if (text.isEmpty())
        return 0;
    if (metrics.horizontalAdvance(text) <= width)
        return metrics.height();
    return metrics.boundingRect(QRect(0, 0, width, 10000), Qt::TextWordWrap, text).height();
}

} // namespace vantry
