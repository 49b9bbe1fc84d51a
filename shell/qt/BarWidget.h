#pragma once

#include "rendering/VantryView.h"
#include "shell/qt/ViewWidget.h"

#include <QAccessibleWidget>

namespace vantry {

/// A `VantryView` that a screen reader sees as the view says: a progress indicator with its label and value, or
/// nothing.
class BarWidget : public ViewWidget<VantryView> {
    Q_OBJECT

public:
    BarWidget(const QtAppearance& appearance, QWidget* parent) : ViewWidget(appearance, VantryView{}, parent) {}

    void setView(const VantryView& view);
};

/// To be called once, before the first `BarWidget` is shown.
void installBarAccessibility();

} // namespace vantry
