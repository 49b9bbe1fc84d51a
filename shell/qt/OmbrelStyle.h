#pragma once

#include "shell/qt/QtAppearance.h"

#include <QProxyStyle>

namespace vantry {

/// Draws the edge of a popover or a menu: one logical pixel wide at every scale.
void drawWindowEdge(QPainter& painter, const QRect& rect, Appearance appearance);

/// The property of push buttons whose action is destructive.
inline constexpr const char* destructiveProperty = "destructive";

/// Draws push buttons, check boxes, pop-up buttons, menus and scroll bars, light and dark, sharp at every scale. The
/// Fusion style draws the rest.
class OmbrelStyle : public QProxyStyle {
    Q_OBJECT

public:
    explicit OmbrelStyle(const QtAppearance& appearance);

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                       const QWidget* widget) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                         const QWidget* widget) const override;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* answer) const override;

private:
    void drawFace(QPainter& painter, const QStyleOption& option, double radius) const;
    void drawDefaultFace(QPainter& painter, const QStyleOption& option) const;
    void drawPushButtonLabel(QPainter& painter, const QStyleOption& option, const QWidget* widget) const;
    void drawScrollBar(QPainter& painter, const QStyleOptionComplex& option, const QWidget* widget) const;
    void drawCheckBox(QPainter& painter, const QStyleOption& option) const;
    void drawPopUpButton(QPainter& painter, const QStyleOption& option) const;
    void drawMenuItem(QPainter& painter, const QStyleOption& option, const QWidget* widget) const;
    [[nodiscard]] QColor accent(const QStyleOption& option) const;

    const QtAppearance& appearance_;
};

} // namespace vantry
