#pragma once

#include "shell/qt/QtAppearance.h"
#include "shell/qt/QtCanvas.h"

#include <QPainter>
#include <QWidget>

namespace vantry {

/// Draws a toolkit-free view (`VantryView`, `SolidSwatchView`) and draws it again when it or the appearance has
/// changed.
template <class View>
class ViewWidget : public QWidget {
public:
    ViewWidget(const QtAppearance& appearance, View view, QWidget* parent)
        : QWidget(parent),
          appearance_(appearance),
          view_(std::move(view)) {
        connect(&appearance_, &QtAppearance::changed, this, qOverload<>(&QWidget::update));
    }

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
        QtCanvas canvas(painter, appearance_.current());
        view_.draw(canvas, {static_cast<double>(width()), static_cast<double>(height())}, appearance_.current());
    }

private:
    const QtAppearance& appearance_;
    View view_;
};

} // namespace vantry
