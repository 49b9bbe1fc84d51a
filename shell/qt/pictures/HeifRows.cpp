#include "shell/qt/pictures/HeifRows.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace vantry {

namespace {

std::uint8_t byteOf(float value) { return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255)); }

} // namespace

YCbCrMatrix YCbCrMatrix::named(int codePoint, bool isFullRange) {
    YCbCrMatrix matrix{.isFullRange = isFullRange};
    switch (codePoint) {
    case 0: matrix.isIdentity = true; break;
    case 1: std::tie(matrix.redWeight, matrix.blueWeight) = std::pair(0.2126F, 0.0722F); break;
    case 4: std::tie(matrix.redWeight, matrix.blueWeight) = std::pair(0.30F, 0.11F); break;
    case 7: std::tie(matrix.redWeight, matrix.blueWeight) = std::pair(0.212F, 0.087F); break;
    case 9:
    case 10: std::tie(matrix.redWeight, matrix.blueWeight) = std::pair(0.2627F, 0.0593F); break;
    default: break;
    }
    return matrix;
}

float HeifRows::Plane::at(int x, int y) const {
    const std::uint8_t* row = bytes + static_cast<std::size_t>(y >> shiftY) * stride;
    const auto column = static_cast<std::size_t>(x >> shiftX);
    if (!isWide)
        return values[row[column]];
    const std::size_t sample = reinterpret_cast<const std::uint16_t*>(row)[column];
    return values[std::min(sample, values.size() - 1)];
}

HeifRows::HeifRows(int width, int height, const YCbCrMatrix& matrix)
    : width_(width),
      height_(height),
      matrix_(matrix) {}

std::optional<HeifRows::Plane> HeifRows::plane(const heif_image* image, heif_channel channel, Role role) const {
    int stride = 0;
    const std::uint8_t* bytes = heif_image_get_plane_readonly(image, channel, &stride);
    const int bits = heif_image_get_bits_per_pixel_range(image, channel);
    if (!bytes || bits < 8 || bits > 16)
        return std::nullopt;
    Plane made{.bytes = bytes, .stride = static_cast<std::size_t>(stride), .isWide = bits > 8};
    const int width = heif_image_get_width(image, channel);
    const int height = heif_image_get_height(image, channel);
    made.shiftX = width < width_ ? 1 : 0;
    made.shiftY = height < height_ ? 1 : 0;
    if (width < (width_ + made.shiftX) >> made.shiftX || height < (height_ + made.shiftY) >> made.shiftY)
        return std::nullopt;

    const auto step = static_cast<float>(1 << (bits - 8)); // of what 8 bits tell apart
    const bool isFull = role == Role::component || matrix_.isFullRange;
    const float zero = role == Role::difference ? 128 * step : isFull ? 0 : 16 * step;
    const float range = isFull                     ? static_cast<float>((1 << bits) - 1)
                        : role == Role::difference ? 224 * step
                                                   : 219 * step;
    made.values.resize(std::size_t{1} << bits);
    for (std::size_t i = 0; i < made.values.size(); ++i)
        made.values[i] = (static_cast<float>(i) - zero) / range;
    return made;
}

// In the order of red, green and blue, if they are not computed.
std::vector<std::pair<heif_channel, HeifRows::Role>> HeifRows::channelsOf(heif_colorspace space, bool isIdentity) {
    if (space == heif_colorspace_RGB)
        return {
            {heif_channel_R, Role::component}, {heif_channel_G, Role::component}, {heif_channel_B, Role::component}};
    if (space != heif_colorspace_YCbCr)
        return {{heif_channel_Y, Role::luma}};
    if (isIdentity)
        return {{heif_channel_Cr, Role::luma}, {heif_channel_Y, Role::luma}, {heif_channel_Cb, Role::luma}};
    return {{heif_channel_Y, Role::luma}, {heif_channel_Cb, Role::difference}, {heif_channel_Cr, Role::difference}};
}

std::optional<HeifRows> HeifRows::of(const heif_image* image, const YCbCrMatrix& matrix) {
    HeifRows rows(heif_image_get_primary_width(image), heif_image_get_primary_height(image), matrix);
    if (rows.width_ < 1 || rows.height_ < 1)
        return std::nullopt;
    for (const auto& [channel, role] : channelsOf(heif_image_get_colorspace(image), matrix.isIdentity)) {
        auto plane = rows.plane(image, channel, role);
        if (!plane)
            return std::nullopt;
        rows.planes_.push_back(std::move(*plane));
    }
    if (heif_image_has_channel(image, heif_channel_Alpha))
        rows.alpha_ = rows.plane(image, heif_channel_Alpha, Role::component);
    rows.isYCbCr_ = heif_image_get_colorspace(image) == heif_colorspace_YCbCr && !matrix.isIdentity;
    rows.isPremultiplied_ = heif_image_is_premultiplied_alpha(const_cast<heif_image*>(image)) != 0;
    return rows;
}

std::array<float, 3> HeifRows::color(int x, int y) const {
    const float first = planes_[0].at(x, y);
    if (planes_.size() == 1)
        return {first, first, first};
    const float second = planes_[1].at(x, y);
    const float third = planes_[2].at(x, y);
    if (!isYCbCr_)
        return {first, second, third};
    const float red = first + 2 * (1 - matrix_.redWeight) * third;
    const float blue = first + 2 * (1 - matrix_.blueWeight) * second;
    const float green =
        (first - matrix_.redWeight * red - matrix_.blueWeight * blue) / (1 - matrix_.redWeight - matrix_.blueWeight);
    return {red, green, blue};
}

void HeifRows::read(int y, std::span<std::uint8_t> rgba) const {
    for (int x = 0; x < width_; ++x) {
        auto* pixel = rgba.data() + static_cast<std::size_t>(x) * 4;
        const auto components = color(x, y);
        const float alpha = alpha_ ? alpha_->at(x, y) : 1;
        const float divisor = isPremultiplied_ && alpha > 0 ? alpha : 1;
        for (std::size_t i = 0; i < components.size(); ++i)
            pixel[i] = byteOf(components[i] / divisor);
        pixel[3] = byteOf(alpha);
    }
}

} // namespace vantry
