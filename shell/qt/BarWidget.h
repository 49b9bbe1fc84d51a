#pragma once

#include "rendering/VantryView.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"

#include <QPainter>
#include <QWidget>

namespace vantry {

/// Draws a toolkit-free view (`VantryView`, `SolidSwatchView`), and redraws when the view or the palette changes.
template <class View>
class ViewWidget : public QWidget {
public:
    ViewWidget(View view, QWidget* parent) : QWidget(parent), view_(std::move(view)) {}

    [[nodiscard]] const View& view() const { return view_; }
    void setView(const View& view) {
        if (view_ == view)
            return;
        view_ = view;
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        QtCanvas canvas(painter, appearanceOf(*this));
        view_.draw(canvas, {static_cast<double>(width()), static_cast<double>(height())}, appearanceOf(*this));
    }

private:
    View view_;
};

/// A `VantryView`. Screen readers get what `VantryView::accessibility()` says: a progress indicator with label and
/// value, or nothing.
class BarWidget : public ViewWidget<VantryView> {
    Q_OBJECT

public:
    explicit BarWidget(QWidget* parent) : ViewWidget(VantryView{}, parent) {}

    void setView(const VantryView& view);
};

/// Call once, before the first `BarWidget` is shown.
void installBarAccessibility();

} // namespace vantry
