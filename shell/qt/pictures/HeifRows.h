#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <libheif/heif.h>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace vantry {

/// How red, green and blue come of luma and of two differences of colour.
struct YCbCrMatrix {
    float redWeight = 0.299F; ///< of red in luma; what HEIF takes for granted is BT.601's
    float blueWeight = 0.114F;
    bool isIdentity = false; ///< the planes are green, blue and red instead
    bool isFullRange = true; ///< otherwise, at 8 bits, 16 is black and 235 is white

    /// By its code point of ITU-T H.273.
    [[nodiscard]] static YCbCrMatrix named(int codePoint, bool isFullRange);
};

/// The rows of a picture as libheif decodes it, with separate planes of 8 to 16 bits a sample.
class HeifRows {
public:
    /// Reads from `image`, which stays the caller's. Absent when it has no planes that this knows.
    [[nodiscard]] static std::optional<HeifRows> of(const heif_image* image, const YCbCrMatrix& matrix);

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    /// Row `y` as red, green, blue and alpha, not premultiplied; `width` pixels.
    void read(int y, std::span<std::uint8_t> rgba) const;

private:
    struct Plane {
        const std::uint8_t* bytes = nullptr;
        std::size_t stride = 0;
        bool isWide = false;       ///< two bytes a sample
        int shiftX = 0;            ///< 1 for one sample for two pixels
        int shiftY = 0;            ///< the same
        std::vector<float> values; ///< by sample: 0 to 1, or -0.5 to 0.5 for a difference of colour

        [[nodiscard]] float at(int x, int y) const;
    };
    enum class Role { component, luma, difference };

    HeifRows(int width, int height, const YCbCrMatrix& matrix);
    [[nodiscard]] static std::vector<std::pair<heif_channel, Role>> channelsOf(heif_colorspace space, bool isIdentity);
    [[nodiscard]] std::optional<Plane> plane(const heif_image* image, heif_channel channel, Role role) const;
    [[nodiscard]] std::array<float, 3> color(int x, int y) const;

    int width_;
    int height_;
    YCbCrMatrix matrix_;
    bool isYCbCr_ = false;
    bool isPremultiplied_ = false;
    std::vector<Plane> planes_; // one of grey, or three
    std::optional<Plane> alpha_;
};

} // namespace vantry
