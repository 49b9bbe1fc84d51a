#include "shell/qt/pictures/AreaAverage.h"

#include <QRgba64>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace vantry {

namespace {

constexpr int side = static_cast<int>(pictureSide);
constexpr std::size_t samples = 4; // of a pixel
constexpr unsigned opaque = 255;

using Sample = std::uint16_t;
using Sums = std::array<float, samples>;

void add(Sums& sums, const Sample* pixel, double weight) {
    for (std::size_t i = 0; i < samples; ++i)
        sums[i] += static_cast<float>(weight) * static_cast<float>(pixel[i]);
}

// The sum of the row from `begin` to `end`, which may lie within pixels, and both within one.
Sums sumOf(const std::vector<Sample>& row, double begin, double end) {
    Sums sums{};
    const auto pixel = [&row](std::size_t x) { return row.data() + x * samples; };
    const std::size_t last = row.size() / samples - 1;
    const auto first = std::min(static_cast<std::size_t>(begin), last);
    const auto behind = std::min(static_cast<std::size_t>(end), last);
    if (first == behind) {
        add(sums, pixel(first), end - begin);
        return sums;
    }
    std::array<std::uint64_t, samples> whole{};
    for (std::size_t x = first + 1; x < behind; ++x)
        for (std::size_t i = 0; i < samples; ++i)
            whole[i] += pixel(x)[i];
    for (std::size_t i = 0; i < samples; ++i)
        sums[i] = static_cast<float>(whole[i]);
    add(sums, pixel(first), static_cast<double>(first + 1) - begin);
    add(sums, pixel(behind), end - static_cast<double>(behind));
    return sums;
}

quint16 component(float fraction) {
    constexpr float full = 65535;
    return static_cast<quint16>(std::lround(std::clamp(fraction, 0.0F, 1.0F) * full));
}

} // namespace

AreaAverage::AreaAverage(int width, int height)
    : width_(width),
      height_(height),
      weighted_(static_cast<std::size_t>(width) * samples),
      squeezed_(pictureSide * samples),
      sums_(pictureSide * pictureSide * samples) {}

void AreaAverage::addRow(std::span<const std::uint8_t> rgba) {
    for (std::size_t i = 0; i + samples <= weighted_.size(); i += samples) {
        const unsigned alpha = rgba[i + 3];
        weighted_[i] = static_cast<Sample>(rgba[i] * alpha);
        weighted_[i + 1] = static_cast<Sample>(rgba[i + 1] * alpha);
        weighted_[i + 2] = static_cast<Sample>(rgba[i + 2] * alpha);
        weighted_[i + 3] = static_cast<Sample>(opaque * alpha);
    }
    const double across = static_cast<double>(width_) / side;
    for (int x = 0; x < side; ++x)
        std::ranges::copy(sumOf(weighted_, x * across, (x + 1) * across),
                          squeezed_.begin() + x * static_cast<std::ptrdiff_t>(samples));

    const double down = static_cast<double>(height_) / side;
    const int first = std::min(static_cast<int>(row_ / down), side - 1);
    for (int y = first; y < side && y * down < row_ + 1; ++y) {
        const double covered = std::min((y + 1) * down, row_ + 1.0) - std::max(y * down, static_cast<double>(row_));
        const auto weight = static_cast<float>(std::max(covered, 0.0));
        float* sum = sums_.data() + static_cast<std::size_t>(y) * squeezed_.size();
        for (const float value : squeezed_)
            *sum++ += weight * value;
    }
    ++row_;
}

QImage AreaAverage::square() const {
    QImage image(side, side, QImage::Format_RGBA64);
    const double area = static_cast<double>(width_) / side * static_cast<double>(height_) / side;
    const auto fullAlpha = static_cast<float>(area * opaque * opaque);
    const float* sum = sums_.data();
    for (int y = 0; y < side; ++y) {
        auto* pixel = reinterpret_cast<QRgba64*>(image.scanLine(y));
        for (int x = 0; x < side; ++x, sum += samples) {
            const float alpha = std::max(sum[3], 1e-6F); // nothing at all is as black as any other colour
            *pixel++ = QRgba64::fromRgba64(component(sum[0] / alpha), component(sum[1] / alpha),
                                           component(sum[2] / alpha), component(sum[3] / fullAlpha));
        }
    }
    return image;
}

} // namespace vantry
