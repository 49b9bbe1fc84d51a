#include "shell/qt/OmbrelStyle.h"

#include <QCheckBox>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QStyleFactory>
#include <QStyleOption>
#include <QWidget>
#include <algorithm>

namespace vantry {

namespace {

constexpr double buttonRadius = 6;
constexpr double checkBoxRadius = 4;
constexpr int ringGap = 1; // between the title of a check box and the ring around it
constexpr int checkBoxSide = 15;
constexpr int controlHeight = 26;
constexpr int buttonPadding = 14;
constexpr int popUpPadding = 9;
constexpr int popUpArrowRoom = 26;
constexpr int menuItemHeight = 24;
constexpr int menuCheckRoom = 24;
constexpr int menuEndRoom = 20;
constexpr int scrollBarWidth = 14;
constexpr int shortestThumb = 32;

// Moves the centre of a one-pixel line to pixel centres.
QRectF onPixels(const QRect& rect) { return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5); }

void strokePath(QPainter& painter, const QPolygonF& points, const QColor& color, double width) {
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(points);
}

void drawTick(QPainter& painter, const QRectF& box, const QColor& color) {
    const auto at = [&](double x, double y) {
        return QPointF(box.left() + box.width() * x, box.top() + box.height() * y);
    };
    strokePath(painter, {at(0.26, 0.53), at(0.44, 0.71), at(0.75, 0.31)}, color, box.width() * 0.125);
}

// The list of a pop-up button has more space beside its text than the button.
constexpr int listRoomLeft = menuCheckRoom - popUpPadding + 2;
constexpr int listRoomRight = 4;

bool isDefaultButton(const QStyleOption& option) {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    return button && button->features.testFlag(QStyleOptionButton::DefaultButton) &&
           button->state.testFlag(QStyle::State_Enabled);
}

QRect partOfScrollBar(const QStyleOptionSlider& bar, QStyle::SubControl part) {
    const bool vertical = bar.orientation == Qt::Vertical;
    const int length = vertical ? bar.rect.height() : bar.rect.width();
    const int range = bar.maximum - bar.minimum;
    const int slider =
        range <= 0 ? length
                   : std::clamp(static_cast<int>(static_cast<qint64>(bar.pageStep) * length / (range + bar.pageStep)),
                                std::min(shortestThumb, length), length);
    const int start =
        QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, length - slider, bar.upsideDown);
    const auto along = [&](int from, int size) {
        return vertical ? QRect(bar.rect.left(), bar.rect.top() + from, bar.rect.width(), size)
                        : QRect(bar.rect.left() + from, bar.rect.top(), size, bar.rect.height());
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove: return bar.rect;
    case QStyle::SC_ScrollBarSlider: return along(start, slider);
    case QStyle::SC_ScrollBarSubPage: return along(0, start);
    case QStyle::SC_ScrollBarAddPage: return along(start + slider, length - start - slider);
    default: return {};
    }
}

class PainterState {
public:
    explicit PainterState(QPainter& painter) : painter_(painter) {
        painter_.save();
        painter_.setRenderHint(QPainter::Antialiasing);
    }
    PainterState(const PainterState&) = delete;
    PainterState& operator=(const PainterState&) = delete;
    ~PainterState() { painter_.restore(); }

private:
    QPainter& painter_;
};

} // namespace

void drawWindowEdge(QPainter& painter, const QRect& rect, Appearance appearance) {
    const QColor line = appearance == Appearance::dark ? QColor(255, 255, 255, 40) : QColor(0, 0, 0, 45);
    painter.fillRect(QRect(rect.left(), rect.top(), rect.width(), 1), line);
    painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), line);
    painter.fillRect(QRect(rect.left(), rect.top() + 1, 1, rect.height() - 2), line);
    painter.fillRect(QRect(rect.right(), rect.top() + 1, 1, rect.height() - 2), line);
}

OmbrelStyle::OmbrelStyle(const QtAppearance& appearance)
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))),
      appearance_(appearance) {}

QColor OmbrelStyle::accent(const QStyleOption& option) const {
    return option.palette.color(option.state & State_Enabled ? QPalette::Normal : QPalette::Disabled,
                                QPalette::Highlight);
}

// The raised face that push buttons and pop-up buttons share.
void OmbrelStyle::drawFace(QPainter& painter, const QStyleOption& option, double radius) const {
    const PainterState state(painter);
    const bool dark = appearance_.current() == Appearance::dark;
    const bool enabled = option.state & State_Enabled;
    QColor face = dark ? QColor(255, 255, 255, enabled ? 32 : 16) : QColor(255, 255, 255, enabled ? 255 : 130);
    if (enabled && (option.state & State_Sunken))
        face = dark ? QColor(255, 255, 255, 62) : QColor(226, 226, 228);
    else if (enabled && (option.state & State_MouseOver))
        face = dark ? QColor(255, 255, 255, 44) : QColor(250, 250, 251);
    const QColor edge = dark ? QColor(255, 255, 255, enabled ? 26 : 14) : QColor(0, 0, 0, enabled ? 40 : 22);
    const QRectF rect = onPixels(option.rect);
    if (!dark && enabled) {
        painter.setPen(QColor(0, 0, 0, 18));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(rect.translated(0, 0.6), radius, radius);
    }
    painter.setPen(QPen(edge, 1));
    painter.setBrush(face);
    painter.drawRoundedRect(rect, radius, radius);
}

void OmbrelStyle::drawDefaultFace(QPainter& painter, const QStyleOption& option) const {
    const PainterState state(painter);
    QColor face = accent(option);
    if (option.state & State_Sunken)
        face = face.darker(118);
    else if (option.state & State_MouseOver)
        face = face.lighter(106);
    painter.setPen(Qt::NoPen);
    painter.setBrush(face);
    painter.drawRoundedRect(QRectF(option.rect), buttonRadius, buttonRadius);
}

void OmbrelStyle::drawPushButtonLabel(QPainter& painter, const QStyleOption& option, const QWidget* widget) const {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    if (!button)
        return;
    QStyleOptionButton label = *button;
    const bool dark = appearance_.current() == Appearance::dark;
    if (isDefaultButton(option))
        label.palette.setColor(QPalette::Normal, QPalette::ButtonText, Qt::white);
    else if (widget && widget->property(destructiveProperty).toBool() && (option.state & State_Enabled))
        label.palette.setColor(QPalette::ButtonText, dark ? QColor(255, 105, 97) : QColor(215, 0, 21));
    label.palette.setCurrentColorGroup(option.state & State_Enabled ? QPalette::Normal : QPalette::Disabled);
    QProxyStyle::drawControl(CE_PushButtonLabel, &label, &painter, widget);
}

// Only the thumb, drawn over the content.
void OmbrelStyle::drawScrollBar(QPainter& painter, const QStyleOptionComplex& option, const QWidget* widget) const {
    const PainterState state(painter);
    const bool dark = appearance_.current() == Appearance::dark;
    const bool active = (option.state & (State_MouseOver | State_Sunken)) && (option.state & State_Enabled);
    const int alpha = active ? 130 : 80;
    const QRectF slider = proxy()->subControlRect(CC_ScrollBar, &option, SC_ScrollBarSlider, widget);
    const double inset = active ? 2.5 : 3.5;
    const QRectF thumb = slider.adjusted(inset, inset, -inset, -inset);
    const double radius = std::min(thumb.width(), thumb.height()) / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(dark ? QColor(255, 255, 255, alpha) : QColor(0, 0, 0, alpha));
    painter.drawRoundedRect(thumb, radius, radius);
}

void OmbrelStyle::drawCheckBox(QPainter& painter, const QStyleOption& option) const {
    const PainterState state(painter);
    const bool dark = appearance_.current() == Appearance::dark;
    const QRectF box = onPixels(option.rect);
    if (!(option.state & State_Enabled))
        painter.setOpacity(0.45);
    if (option.state & State_On) {
        QColor fill = accent(option);
        painter.setPen(Qt::NoPen);
        painter.setBrush(option.state & State_Sunken ? fill.darker(115) : fill);
        painter.drawRoundedRect(QRectF(option.rect), checkBoxRadius, checkBoxRadius);
        drawTick(painter, QRectF(option.rect), Qt::white);
        return;
    }
    painter.setPen(dark ? QColor(255, 255, 255, 70) : QColor(0, 0, 0, 70));
    const bool sunken = option.state & State_Sunken;
    painter.setBrush(dark     ? QColor(255, 255, 255, sunken ? 60 : 22)
                     : sunken ? QColor(226, 226, 228)
                              : QColor(Qt::white));
    painter.drawRoundedRect(box, checkBoxRadius, checkBoxRadius);
}

void OmbrelStyle::drawPopUpButton(QPainter& painter, const QStyleOption& option) const {
    drawFace(painter, option, buttonRadius);
    const PainterState state(painter);
    const QRect whole = option.rect;
    const QRectF badge(whole.right() + 1 - 21, whole.center().y() + 0.5 - 8, 16, 16);
    painter.setPen(Qt::NoPen);
    if (option.state & State_Enabled) {
        painter.setBrush(accent(option));
        painter.drawRoundedRect(badge, 4, 4);
    }
    const QColor arrows = option.state & State_Enabled ? QColor(Qt::white)
                                                       : option.palette.color(QPalette::Disabled, QPalette::ButtonText);
    const QPointF center = badge.center();
    for (const double direction : {-1.0, 1.0})
        strokePath(painter,
                   {center + QPointF(-2.75, direction * 2), center + QPointF(0, direction * 4.75),
                    center + QPointF(2.75, direction * 2)},
                   arrows, 1.4);
}

void OmbrelStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    switch (element) {
    case PE_PanelButtonCommand:
        if (isDefaultButton(*option))
            drawDefaultFace(*painter, *option);
        else
            drawFace(*painter, *option, buttonRadius);
        return;
    case PE_FrameDefaultButton: return; // the face shows it
    case PE_IndicatorCheckBox: drawCheckBox(*painter, *option); return;
    case PE_FrameFocusRect: {
        const PainterState state(*painter);
        QColor ring = accent(*option);
        ring.setAlpha(170);
        painter->setPen(QPen(ring, 2));
        painter->setBrush(Qt::NoBrush);
        QRectF rect = QRectF(option->rect).adjusted(1, 1, -1, -1);
        if (const auto* box = qobject_cast<const QCheckBox*>(widget); box && !box->text().isEmpty())
            rect.adjust(-ringGap, 0, ringGap, 0);
        painter->drawRoundedRect(rect, buttonRadius - 1, buttonRadius - 1);
        return;
    }
    case PE_PanelMenu: // a menu, or a pop-up button's list, which has no frame of its own
        painter->fillRect(option->rect, option->palette.color(QPalette::Window));
        drawWindowEdge(*painter, option->rect, appearance_.current());
        return;
    case PE_FrameMenu: return;
    default: QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void OmbrelStyle::drawMenuItem(QPainter& painter, const QStyleOption& option, const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(&option);
    if (!item)
        return;
    const PainterState state(painter);
    if (item->menuItemType == QStyleOptionMenuItem::Separator) {
        painter.fillRect(QRectF(item->rect.left() + 8, item->rect.center().y(), item->rect.width() - 16, 1),
                         appearance_.current() == Appearance::dark ? QColor(255, 255, 255, 34) : QColor(0, 0, 0, 28));
        return;
    }
    const bool enabled = item->state & State_Enabled;
    const bool selected = enabled && (item->state & State_Selected);
    if (selected) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(accent(*item));
        painter.drawRoundedRect(QRectF(item->rect).adjusted(0, 0, 0, 0), 5, 5);
    }
    const QColor ink = selected ? QColor(Qt::white)
                                : item->palette.color(enabled ? QPalette::Normal : QPalette::Disabled, QPalette::Text);
    const QRect inside = item->rect.adjusted(menuCheckRoom, 0, -menuEndRoom, 0);
    if (item->checked)
        drawTick(painter, QRectF(item->rect.left() + 5, item->rect.center().y() - 6.5, 14, 14), ink);
    const auto parts = item->text.split(u'\t');
    painter.setPen(ink);
    painter.setFont(item->font);
    const int mnemonic =
        proxy()->styleHint(SH_UnderlineShortcut, item, widget) ? Qt::TextShowMnemonic : Qt::TextHideMnemonic;
    painter.drawText(inside, Qt::AlignVCenter | Qt::TextSingleLine | mnemonic, parts.front());
    if (parts.size() > 1) {
        QColor faded = ink;
        faded.setAlphaF(selected ? 0.85F : 0.5F);
        painter.setPen(faded);
        painter.drawText(inside.adjusted(0, 0, 8, 0), Qt::AlignVCenter | Qt::AlignRight | Qt::TextSingleLine, parts[1]);
    }
    if (item->menuItemType == QStyleOptionMenuItem::SubMenu) {
        const QPointF center(item->rect.right() - 10, item->rect.center().y() + 0.5);
        strokePath(painter, {center + QPointF(-1.75, -3.5), center + QPointF(1.75, 0), center + QPointF(-1.75, 3.5)},
                   ink, 1.5);
    }
}

void OmbrelStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    if (element == CE_MenuItem) {
        drawMenuItem(*painter, *option, widget);
        return;
    }
    if (element == CE_PushButtonLabel) {
        drawPushButtonLabel(*painter, *option, widget);
        return;
    }
    if (element == CE_ComboBoxLabel) {
        const auto* comboBox = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        if (!comboBox)
            return;
        painter->setPen(comboBox->palette.color(comboBox->state & State_Enabled ? QPalette::Normal : QPalette::Disabled,
                                                QPalette::ButtonText));
        painter->drawText(comboBox->rect.adjusted(popUpPadding, 0, -popUpArrowRoom, 0),
                          Qt::AlignVCenter | Qt::TextSingleLine, comboBox->currentText);
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void OmbrelStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                     const QWidget* widget) const {
    if (control == CC_ScrollBar) {
        drawScrollBar(*painter, *option, widget);
        return;
    }
    if (control != CC_ComboBox) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    drawPopUpButton(*painter, *option);
    if ((option->state & State_HasFocus) && (option->state & State_KeyboardFocusChange))
        drawPrimitive(PE_FrameFocusRect, option, painter, widget);
}

QRect OmbrelStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                  const QWidget* widget) const {
    if (control == CC_ComboBox && part == SC_ComboBoxListBoxPopup)
        return option->rect.adjusted(-listRoomLeft, 0, listRoomRight, 0); // aligns the items' text with the button's
    if (control == CC_ScrollBar)
        if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option))
            return partOfScrollBar(*bar, part);
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QSize OmbrelStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                    const QWidget* widget) const {
    switch (type) {
    case CT_PushButton: {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        const int textWidth = button ? button->fontMetrics.horizontalAdvance(button->text) : contents.width();
        const int textHeight = button ? button->fontMetrics.height() : contents.height();
        return {textWidth + 2 * buttonPadding, std::max(controlHeight, textHeight + 8)};
    }
    case CT_ComboBox:
        return {contents.width() + popUpPadding + popUpArrowRoom,
                std::max(controlHeight, option->fontMetrics.height() + 8)};
    case CT_MenuItem: {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (!item || item->menuItemType == QStyleOptionMenuItem::Separator)
            return {contents.width(), 9};
        int width = menuCheckRoom + menuEndRoom;
        const auto parts = item->text.split(u'\t');
        width += item->fontMetrics.size(Qt::TextSingleLine | Qt::TextShowMnemonic, parts.front()).width();
        if (parts.size() > 1)
            width += 36 + item->fontMetrics.horizontalAdvance(parts[1]);
        return {width, std::max(menuItemHeight, item->fontMetrics.height() + 6)};
    }
    default: return QProxyStyle::sizeFromContents(type, option, contents, widget);
    }
}

int OmbrelStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight: return checkBoxSide;
    case PM_CheckBoxLabelSpacing: return 7;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical: return 0;
    case PM_MenuHMargin:
    case PM_MenuVMargin: return 5;
    case PM_MenuPanelWidth: return 1;
    case PM_ScrollBarExtent: return scrollBarWidth;
    case PM_ScrollView_ScrollBarOverlap: return scrollBarWidth; // the content keeps its width
    default: return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int OmbrelStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* answer) const {
    switch (hint) {
    case SH_ComboBox_Popup: return 1; // the list opens over the button, with the current item on the button's text
    case SH_DialogButtonBox_ButtonsHaveIcons: return 0;
    case SH_UnderlineShortcut: return 0;
    default: return QProxyStyle::styleHint(hint, option, widget, answer);
    }
}

} // namespace vantry
