#pragma once

#include "base/Geometry.h"
#include "shell/qt/QtCanvas.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace vantry {

inline void PrintTo(const QColor& color, std::ostream* out) { *out << color.name(QColor::HexArgb).toStdString(); }

/// An image of `size` points at a device scale, painted through `QtCanvas`.
class Picture {
public:
    Picture(Size size, double scale, const QColor& background)
        : image_(static_cast<int>(std::ceil(size.width * scale)), static_cast<int>(std::ceil(size.height * scale)),
                 QImage::Format_ARGB32_Premultiplied) {
        image_.setDevicePixelRatio(scale);
        image_.fill(background);
    }

    template <class Draw>
    void paint(Appearance appearance, const Draw& draw) {
        paint(appearance, QPointF(), draw);
    }
    /// With the canvas's (0, 0) at `origin`, in points.
    template <class Draw>
    void paint(Appearance appearance, const QPointF& origin, const Draw& draw) {
        QPainter painter(&image_);
        painter.translate(origin);
        QtCanvas canvas(painter, appearance);
        draw(canvas);
    }

    /// By device pixel.
    [[nodiscard]] QColor at(int x, int y) const { return image_.pixelColor(x, y); }
    [[nodiscard]] int width() const { return image_.width(); }
    [[nodiscard]] int height() const { return image_.height(); }
    [[nodiscard]] const QImage& image() const { return image_; }

private:
    QImage image_;
};

/// Whether no component differs by more than `tolerance` of 255.
inline testing::AssertionResult isNear(const QColor& actual, const QColor& expected, int tolerance = 2) {
    const int differences[] = {actual.red() - expected.red(), actual.green() - expected.green(),
                               actual.blue() - expected.blue(), actual.alpha() - expected.alpha()};
    for (const int difference : differences)
        if (std::abs(difference) > tolerance)
            return testing::AssertionFailure() << "was " << actual.name(QColor::HexArgb).toStdString() << ", expected "
                                               << expected.name(QColor::HexArgb).toStdString();
    return testing::AssertionSuccess();
}

} // namespace vantry
