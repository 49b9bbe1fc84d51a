#include "shell/qt/CleanupLook.h"

#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"

#include <QFontMetrics>
#include <QLabel>
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

} // namespace

QColor roleColor(SystemColor role, Appearance appearance) { return qColor(DynamicColor{role}, appearance); }

QColor readableColor(SystemColor role, Appearance appearance, double ratio) {
    QColor color = roleColor(role, appearance);
    if (color.alpha() != 255) // translucent roles are text colours, which are readable already
        return color;
    const bool dark = appearance == Appearance::dark;
    const QColor ground = cardColor(appearance);
    for (int step = 0; step < 40 && contrast(color, ground) < ratio; ++step)
        color = dark ? color.lighter(104)
                     : QColor::fromHsvF(color.hsvHueF(), color.hsvSaturationF(), color.valueF() * 0.97F);
    return color;
}

QLabel* plainLabel(const Font& font, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setFont(qFont(font, *label));
    label->setTextFormat(Qt::PlainText);
    return label;
}

void setTextColor(QLabel& label, SystemColor role, Appearance appearance) {
    QPalette palette;
    palette.setColor(QPalette::WindowText, roleColor(role, appearance));
    label.setPalette(palette);
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

int wrappedHeight(const QFontMetrics& metrics, const QString& text, int width) {
    if (text.isEmpty())
        return 0;
    if (!text.contains(u'\n') && metrics.horizontalAdvance(text) <= width)
        return metrics.height();
    return metrics.boundingRect(QRect(0, 0, width, 10000), Qt::TextWordWrap, text).height();
}

} // namespace vantry
