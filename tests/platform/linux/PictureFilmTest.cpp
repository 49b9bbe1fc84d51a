// Which frame of a film is taken, its orientation and its colours.

#include "tests/platform/linux/PictureFixture.h"

#include <chrono>
#include <cstdint>
#include <stdexcept>

namespace vantry {

namespace {

constexpr PicturePixel red{210, 30, 30};
constexpr PicturePixel blue{30, 40, 200};

std::string hex(const PicturePixel& color) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text = "0x";
    for (const unsigned component : {color.red, color.green, color.blue})
        text += {digits[component >> 4U], digits[component & 15U]};
    return text;
}

using Arguments = std::vector<std::string>;

class Film : public PictureFixture {
protected:
    /// Shows one colour until `seconds`, another one until the end; a key frame in each second.
    [[nodiscard]] std::filesystem::path inTwoColors(const std::string& name, int seconds, int length) const {
        const auto source = [](const PicturePixel& color, int duration) {
            return "color=" + hex(color) + ":s=160x120:r=5:d=" + std::to_string(duration);
        };
        return film(name,
                    {"-f", "lavfi", "-i", source(red, seconds), "-f", "lavfi", "-i", source(blue, length - seconds),
                     "-filter_complex", "[0][1]concat=n=2", "-g", "5", "-pix_fmt", "yuv420p", "-preset", "ultrafast"});
    }
    /// Shows the four quarters for two seconds.
    [[nodiscard]] std::filesystem::path inQuarters(const std::string& name, const Arguments& more = {},
                                                   QSize size = {320, 240}) const {
        Arguments arguments{"-loop", "1", "-i", save(quarteredPicture(quarters, size), "frame.png"),
                            "-t",    "2", "-r", "5"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        if (std::ranges::find(more, "-pix_fmt") == more.end())
            arguments.insert(arguments.end(), {"-pix_fmt", "yuv420p"});
        return film(name, arguments);
    }
    static void expectOneColor(const std::optional<PicturePixels>& pixels, const PicturePixel& color) {
        expectQuarters(pixels, {color, color, color, color}, 6);
    }
};

/// Writes the first four numbers of the display matrix of every track, as 1, 0 or -1.
std::string withMatrix(std::string film, const std::array<int, 4>& matrix) {
    constexpr std::size_t matrixOffset = 44; // from the name of the box
    const auto put = [&film](std::size_t at, int value) {
        const auto fixed = static_cast<std::uint32_t>(value * 65536);
        for (unsigned i = 0; i < 4; ++i)
            film[at + i] = static_cast<char>(fixed >> (24 - 8 * i) & 0xffU);
    };
    std::size_t found = 0;
    for (auto at = film.find("tkhd"); at != film.npos; at = film.find("tkhd", at + 4), ++found) {
        put(at + matrixOffset, matrix[0]);
        put(at + matrixOffset + 4, matrix[1]);
        put(at + matrixOffset + 12, matrix[2]);
        put(at + matrixOffset + 16, matrix[3]);
    }
    if (found == 0)
        throw std::runtime_error("no track in the film");
    return film;
}

} // namespace

TEST_F(Film, ShowsTheFirstFrameWhenItIsShort) {
    for (const char* name : {"a.mp4", "a.mov", "a.m4v", "A.MOV", "a.Mp4"}) {
        SCOPED_TRACE(name);
        expectOneColor(read(inTwoColors(name, 4, 5)), red);
    }
}

TEST_F(Film, ShowsTheFrameAtTenSecondsWhenItIsLongerThanThat) {
    expectOneColor(read(inTwoColors("a.mp4", 9, 30)), blue);
    expectOneColor(read(inTwoColors("b.mp4", 12, 75)), red);
}

TEST_F(Film, ShowsTheFrameAtSeventyFiveSecondsWhenItIsLongerThanThat) {
    expectOneColor(read(inTwoColors("a.mov", 74, 80)), blue);
    expectOneColor(read(inTwoColors("b.mov", 77, 80)), red);
}

TEST_F(Film, WhoseKeyFramesAreFarApartShowsTheOneBefore) {
    const auto file = film("a.mp4", {"-f", "lavfi", "-i", "color=" + hex(red) + ":s=160x120:r=5:d=20", "-g", "1000",
                                     "-pix_fmt", "yuv420p"});
    expectOneColor(read(file), red);
}

TEST_F(Film, ShowsTheWholeFrame) {
    expectQuarters(read(inQuarters("a.mp4")), quarters, 8);
    expectQuarters(read(inQuarters("b.mp4", {"-vf", "scale=out_color_matrix=bt709"}, {1920, 1080})), quarters, 8);
    expectQuarters(read(inQuarters("c.mp4", {}, {96, 64})), quarters, 10);
}

TEST_F(Film, IsUprightHoweverTheCameraWasHeld) {
    const std::string original = readFile(inQuarters("original.mp4"));
    const struct {
        std::array<int, 4> matrix;
        std::array<std::size_t, 4> from;
    } cases[] = {
        {{1, 0, 0, 1}, {0, 1, 2, 3}},  {{0, 1, -1, 0}, {2, 0, 3, 1}}, {{-1, 0, 0, -1}, {3, 2, 1, 0}},
        {{0, -1, 1, 0}, {1, 3, 0, 2}}, {{-1, 0, 0, 1}, {1, 0, 3, 2}}, {{1, 0, 0, -1}, {2, 3, 0, 1}},
        {{0, 0, 0, 0}, {0, 1, 2, 3}}, // nonsense
    };
    for (const auto& [matrix, from] : cases) {
        SCOPED_TRACE(testing::PrintToString(matrix));
        const Quarters expected{quarters[from[0]], quarters[from[1]], quarters[from[2]], quarters[from[3]]};
        expectQuarters(read(save(withMatrix(original, matrix), "a.mp4")), expected, 8);
    }
}

TEST_F(Film, HasTheColorsThatItsMatrixAndRangeSay) {
    const struct {
        const char* matrix;
        const char* range;
        const char* label;
        QSize size;
    } cases[] = {
        {"bt601", "tv", "smpte170m", {320, 240}},  {"bt709", "tv", "bt709", {320, 240}},
        {"bt709", "pc", "bt709", {320, 240}},      {"bt601", "pc", "smpte170m", {1280, 720}},
        {"bt601", "tv", "unknown", {320, 240}},    {"bt709", "tv", "unknown", {1280, 720}},
        {"bt2020", "tv", "bt2020nc", {1280, 720}},
    };
    for (const auto& [matrix, range, label, size] : cases) {
        SCOPED_TRACE(std::string(matrix) + " " + range + " " + label);
        const auto file = inQuarters("a.mp4",
                                     {"-vf", std::string("scale=out_color_matrix=") + matrix + ":out_range=" + range,
                                      "-colorspace", label, "-color_range", range},
                                     size);
        expectQuarters(read(file), quarters, 6);
    }
}

TEST_F(Film, InOtherFormatsIsRead) {
    const Arguments cases[] = {
        {"-c:v", "mpeg4", "-q:v", "2"},
        {"-c:v", "libx265", "-x265-params", "log-level=none"},
        {"-c:v", "prores_ks", "-pix_fmt", "yuv422p10le"},
        {"-c:v", "mjpeg", "-q:v", "2", "-pix_fmt", "yuvj444p"},
        {"-c:v", "png", "-pix_fmt", "rgb24"},
    };
    for (const auto& arguments : cases) {
        SCOPED_TRACE(arguments[1]);
        expectQuarters(read(inQuarters("a.mov", arguments)), quarters, 10);
    }
}

TEST_F(Film, KeepsItsTransparency) {
    constexpr Quarters colors{{{200, 40, 40, 255}, {40, 160, 60, 128}, {40, 60, 190, 64}, {0, 0, 0, 0}}};
    const auto frame = save(quarteredPicture(colors), "frame.png");
    const auto pixels = read(film("a.mov", {"-i", frame, "-c:v", "png", "-pix_fmt", "rgba"}));
    ASSERT_TRUE(pixels);
    for (const auto& [x, y, alpha] : {std::tuple{20U, 20U, 255}, {100U, 20U, 128}, {20U, 100U, 64}, {100U, 100U, 0}})
        EXPECT_NEAR((*pixels)[y * pictureSide + x].alpha, alpha, 3);
}

TEST_F(Film, OfHighDynamicRangeIsRead) {
    const auto file =
        inQuarters("a.mov", {"-c:v", "libx265", "-pix_fmt", "yuv420p10le", "-color_primaries", "bt2020", "-color_trc",
                             "smpte2084", "-colorspace", "bt2020nc", "-x265-params", "log-level=none"});
    EXPECT_TRUE(read(file));
}

TEST_F(Film, WithSoundBeforeThePictureIsRead) {
    const auto file =
        film("a.mp4", {"-f", "lavfi", "-i", "sine=d=12", "-f", "lavfi", "-i",
                       "color=" + hex(blue) + ":s=160x120:r=5:d=12", "-map", "0", "-map", "1", "-pix_fmt", "yuv420p"});
    expectOneColor(read(file), blue);
}

TEST_F(Film, WithoutAPictureIsNone) { EXPECT_FALSE(read(film("a.mp4", {"-f", "lavfi", "-i", "sine=d=2"}))); }

TEST_F(Film, ThatIsCutOffIsNoneOrShowsWhatIsThere) {
    const std::string original = readFile(inTwoColors("original.mp4", 9, 12)); // its table is at the end
    for (const double part : {0.01, 0.5, 0.9})
        EXPECT_FALSE(read(
            save(original.substr(0, static_cast<std::size_t>(part * static_cast<double>(original.size()))), "a.mp4")))
            << part;
    const auto begun =
        readFile(film("begun.mp4", {"-i", root / "original.mp4", "-c", "copy", "-movflags", "faststart"}));
    const auto pixels = read(save(begun.substr(0, begun.size() * 6 / 10), "a.mp4"));
    if (pixels)
        expectOneColor(pixels, red);
    EXPECT_FALSE(read(save(begun.substr(0, begun.find("mdat") + 4), "b.mp4")));
}

TEST_F(Film, ThatIsSomethingElseIsNone) {
    const auto real = inQuarters("real.mp4");
    const auto picture = save(quarteredPicture(), "a.png");
    const struct {
        const char* name;
        std::string contents;
    } cases[] = {
        {"text.mp4", std::string(1000, 'a')},
        {"list.mp4", "#EXTM3U\n#EXTINF:2,\n" + real.native() + "\n#EXT-X-ENDLIST\n"},
        {"list.mov", "ffconcat version 1.0\nfile '" + real.native() + "'\n"},
        {"picture.mov", readFile(picture)},
        {"zeros.m4v", std::string(1 << 20, '\0')},
    };
    for (const auto& [name, contents] : cases)
        EXPECT_FALSE(read(save(contents, name))) << name;
}

} // namespace vantry
