#pragma once

#include "platform/linux/PictureWorker.h"
#include "tests/support/EndedChild.h"
#include "tests/support/TemporaryFolder.h"

#include <QByteArray>
#include <QImage>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace vantry {

inline void PrintTo(const PicturePixel& pixel, std::ostream* out) {
    *out << '(' << +pixel.red << ' ' << +pixel.green << ' ' << +pixel.blue << ' ' << +pixel.alpha << ')';
}

inline int difference(const PicturePixel& one, const PicturePixel& other) {
    return std::max({std::abs(one.red - other.red), std::abs(one.green - other.green), std::abs(one.blue - other.blue),
                     std::abs(one.alpha - other.alpha)});
}

/// Top left, top right, bottom left, bottom right.
using Quarters = std::array<PicturePixel, 4>;

inline constexpr Quarters quarters{{{200, 40, 40}, {40, 160, 60}, {40, 60, 190}, {230, 210, 60}}};

/// A picture in four colours, by quarters.
inline QImage quarteredPicture(const Quarters& colors = quarters, QSize size = {400, 300}) {
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            const auto& color = colors[(2 * y < size.height() ? 0 : 2) + (2 * x < size.width() ? 0 : 1)];
            image.setPixel(x, y, qRgba(color.red, color.green, color.blue, color.alpha));
        }
    const bool isOpaque = std::ranges::all_of(colors, [](const PicturePixel& color) { return color.alpha == 255; });
    return isOpaque ? image.convertToFormat(QImage::Format_RGB32) : image;
}

/// All of `pixels`, but for where two quarters meet.
inline void expectQuarters(const std::optional<PicturePixels>& pixels, const Quarters& expected, int tolerance) {
    ASSERT_TRUE(pixels);
    ASSERT_EQ(pixels->size(), pictureSide * pictureSide);
    constexpr std::size_t half = pictureSide / 2;
    constexpr std::size_t margin = 6;
    for (std::size_t y = 0; y < pictureSide; ++y)
        for (std::size_t x = 0; x < pictureSide; ++x) {
            if (x + margin >= half && x < half + margin)
                continue;
            if (y + margin >= half && y < half + margin)
                continue;
            const auto& color = (*pixels)[y * pictureSide + x];
            const auto& wanted = expected[(y < half ? 0U : 2U) + (x < half ? 0U : 1U)];
            ASSERT_LE(difference(color, wanted), tolerance) << x << ", " << y << ": " << testing::PrintToString(color)
                                                            << " instead of " << testing::PrintToString(wanted);
        }
}

class PictureFixture : public testing::Test {
protected:
    /// In a worker as `readPicture` starts it.
    [[nodiscard]] static std::optional<PicturePixels> read(const std::filesystem::path& file) {
        return readPictureInWorker(OMBREL_EXECUTABLE, file, std::chrono::seconds(60));
    }

    [[nodiscard]] std::filesystem::path save(const QImage& image, const std::string& name, int quality = -1) const {
        if (!image.save(QString::fromStdString(root / name), nullptr, quality))
            throw std::runtime_error("cannot write " + name);
        return root / name;
    }
    [[nodiscard]] std::filesystem::path save(const std::string& contents, const std::string& name) const {
        writeFile(root / name, contents);
        return root / name;
    }
    /// The file `name` as ffmpeg makes it.
    [[nodiscard]] std::filesystem::path film(const std::string& name, std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"-loglevel", "error", "-y"});
        arguments.push_back(root / name);
        const auto ended = endOf("/usr/bin/ffmpeg", arguments);
        if (ended.status != 0)
            throw std::runtime_error("ffmpeg cannot make " + name + ": " + testing::PrintToString(ended));
        return root / name;
    }

    const TemporaryFolder root;
};

} // namespace vantry
