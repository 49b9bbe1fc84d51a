#pragma once

#include "platform/Picture.h"

#include <QImage>
#include <cstdint>
#include <span>
#include <vector>

namespace vantry {

/// Reduces a picture to a square of `pictureSide`: each of its pixels becomes the average of the area that it covers,
/// weighted by alpha. Takes the picture row by row, so that a large one is in memory once.
class AreaAverage {
public:
    /// Both at least 1.
    AreaAverage(int width, int height);

    /// The next row from the top: `width` pixels of red, green, blue and alpha, not premultiplied.
    void addRow(std::span<const std::uint8_t> rgba);
    /// After `height` rows: in Format_RGBA64.
    [[nodiscard]] QImage square() const;

private:
    int width_;
    int height_;
    int row_ = 0;
    std::vector<std::uint16_t> weighted_; // a row: components times alpha, and 255 times alpha
    std::vector<float> squeezed_;         // a row, `pictureSide` pixels wide
    std::vector<float> sums_;             // the square
};

} // namespace vantry
