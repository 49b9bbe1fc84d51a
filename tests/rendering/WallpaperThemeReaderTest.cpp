#include "rendering/WallpaperThemeReader.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vantry {

namespace {

using Path = std::filesystem::path;
using Paths = std::vector<Path>;

constexpr Rect frame{0, 0, 1000, 600};
const Screen screen{.name = "Built-in", .frame = frame};

WindowInfo window(std::string owner, int process, Rect bounds, int layer) {
    return {std::move(owner), process, bounds, layer};
}

class FakeWindowList : public WindowList {
public:
    [[nodiscard]] std::vector<WindowInfo> onScreenWindows() const override { return windows; }

    std::vector<WindowInfo> windows;
};

class CurrentWallpaper : public testing::Test {
protected:
    CurrentWallpaper() {
        writeFile(root / "film.mov", "1");
        writeFile(root / "other.png", "2");
    }

    [[nodiscard]] Path found() const { return WallpaperThemeReader::currentWallpaperURL(screen, sources); }

    const TemporaryFolder root;
    const std::shared_ptr<FakeWindowList> windows = std::make_shared<FakeWindowList>();
    std::map<int, Paths> files;
    std::optional<Path> moving;
    std::optional<Path> chosen;
    std::vector<std::string> asked;
    WallpaperThemeReader::Sources sources{.windows = windows,
                                          .openFiles =
                                              [this](int process) {
                                                  asked.push_back("files " + std::to_string(process));
                                                  return files[process];
                                              },
                                          .movingWallpaper =
                                              [this] {
                                                  asked.emplace_back("moving");
                                                  return moving;
                                              },
                                          .desktopPicture =
                                              [this](const Screen& of) {
                                                  asked.push_back("picture of " + of.name);
                                                  return chosen;
                                              },
                                          .defaultPicture = "/system/default.heic",
                                          .palette = {}};
};

} // namespace

TEST(WallpaperThemeReader, TheFallbackPaletteIsTheSevenVividColours) {
    constexpr Rgba expected[] = {
        {0.18, 0.34, 0.72, 1}, {0.12, 0.67, 0.78, 1}, {0.42, 0.25, 0.91, 1}, {0.68, 0.25, 0.91, 1},
        {0.91, 0.24, 0.57, 1}, {0.96, 0.25, 0.3, 1},  {0.98, 0.49, 0.2, 1},
    };
    ASSERT_EQ(WallpaperThemeReader::fallbackPalette.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(WallpaperThemeReader::fallbackPalette[i], expected[i]) << i;
}

TEST(WallpaperThemeReader, AWindowThatCoversMostOfTheScreenIsAWallpaper) {
    const struct {
        Rect bounds;
        bool covers;
    } cases[] = {
        {{0, 0, 1000, 600}, true},    {{0, 0, 800, 480}, true},     {{0, 0, 799.9, 600}, false},
        {{0, 0, 1000, 479.9}, false}, {{500, 500, 800, 480}, true}, {{0, 0, 4000, 4000}, true},
        {{0, 0, 0, 0}, false},
    };
    for (const auto& [bounds, covers] : cases) {
        const std::vector<WindowInfo> windows{window("Player", 7, bounds, 0)};
        EXPECT_EQ(WallpaperThemeReader::rendererProcesses(windows, frame), covers ? std::vector{7} : std::vector<int>())
            << bounds.width << " x " << bounds.height;
    }
}

TEST(WallpaperThemeReader, AWindowOfTheSystemIsNotAWallpaper) {
    std::vector<WindowInfo> windows;
    for (const char* owner : {"Dock", "Finder", "Notification Center", "Wallpaper", "Window Server", "WindowManager"})
        windows.push_back(window(owner, 1, frame, 5));
    EXPECT_EQ(WallpaperThemeReader::rendererProcesses(windows, frame), std::vector<int>());
    windows.push_back(window("finder", 2, frame, 0));
    windows.push_back(window("", 3, frame, 0));
    EXPECT_EQ(WallpaperThemeReader::rendererProcesses(windows, frame), (std::vector{2, 3}));
}

TEST(WallpaperThemeReader, AsksTheWindowInFrontFirst) {
    const std::vector<WindowInfo> windows{window("a", 9, frame, -5), window("b", 3, frame, 2), window("c", 8, frame, 2),
                                          window("d", 1, frame, 0), window("e", 2, frame, 2)};
    EXPECT_EQ(WallpaperThemeReader::rendererProcesses(windows, frame), (std::vector{3, 8, 2, 1, 9}));
}

TEST(WallpaperThemeReader, FindsMediaAmongOpenFiles) {
    const TemporaryFolder root;
    const auto file = [&](const std::string& name) {
        std::filesystem::create_directories((root / name).parent_path());
        writeFile(root / name, "1");
        return root / name;
    };
    const auto film = file("a film.MOV");
    for (const char* extension :
         {"gif", "heic", "heif", "jpeg", "jpg", "m4v", "mov", "mp4", "png", "tif", "tiff", "webp", "WebP"}) {
        const auto media = file(std::string("media.") + extension);
        EXPECT_EQ(WallpaperThemeReader::mediaAmong(Paths{media}), media) << extension;
    }
    const auto other = file("other.txt");
    const auto bare = file("png");
    const auto inside = file("Player.app/Contents/Resources/logo.png");
    EXPECT_EQ(WallpaperThemeReader::mediaAmong(Paths{}), std::nullopt);
    EXPECT_EQ(WallpaperThemeReader::mediaAmong(Paths{other, bare, inside, root / "missing.png", ""}), std::nullopt);
    EXPECT_EQ(WallpaperThemeReader::mediaAmong(Paths{other, inside, film, root / "media.gif"}), film);
}

TEST_F(CurrentWallpaper, IsTheMediaOfAProgramThatCoversTheScreen) {
    windows->windows = {window("Player", 4, frame, 0), window("Other", 5, frame, 3)};
    files = {{4, {root / "film.mov"}}, {5, {"/nothing.txt"}}};
    moving = root / "other.png";
    EXPECT_EQ(found(), root / "film.mov");
    EXPECT_EQ(asked, (std::vector<std::string>{"files 5", "files 4"}));
}

TEST_F(CurrentWallpaper, IsNeverWhatTheFileManagerHoldsOpen) {
    windows->windows = {window("Finder", 4, frame, 0)};
    files = {{4, {root / "film.mov"}}};
    EXPECT_EQ(found(), "/system/default.heic");
}

TEST_F(CurrentWallpaper, ComesFromTheFirstSourceThatKnowsIt) {
    moving = root / "film.mov";
    chosen = root / "other.png";
    EXPECT_EQ(found(), root / "film.mov");
    EXPECT_EQ(asked, (std::vector<std::string>{"moving"}));
    moving.reset();
    EXPECT_EQ(found(), root / "other.png");
    chosen.reset();
    EXPECT_EQ(found(), "/system/default.heic");
    EXPECT_EQ(asked.back(), "picture of Built-in");
}

TEST_F(CurrentWallpaper, IsFoundWithoutAListOfWindows) {
    sources.windows = nullptr;
    chosen = root / "other.png";
    EXPECT_EQ(found(), root / "other.png");
}

TEST(WallpaperIdentity, ChangesWithPathDateAndSize) {
    const TemporaryFolder root;
    writeFile(root / "one", "12345");
    const auto date = [&](std::chrono::seconds since1970) {
        std::filesystem::last_write_time(root / "one",
                                         std::chrono::file_clock::from_sys(std::chrono::sys_seconds(since1970)));
    };
    date(std::chrono::seconds(1'700'000'000));
    const std::string path = (root / "one").native();
    EXPECT_EQ(WallpaperThemeReader::identity(root / "one"), path + "|1700000000|5");
    date(std::chrono::seconds(1'700'000'001));
    EXPECT_EQ(WallpaperThemeReader::identity(root / "one"), path + "|1700000001|5");
    writeFile(root / "one", "123456");
    date(std::chrono::seconds(1'700'000'001));
    EXPECT_EQ(WallpaperThemeReader::identity(root / "one"), path + "|1700000001|6");
    EXPECT_EQ(WallpaperThemeReader::identity("/no/such file"), "/no/such file|0|0");
}

TEST_F(CurrentWallpaper, ThatCannotBeReadLetsTheNextSourceAnswer) {
    const std::vector<Rgba> red{{1, 0, 0}};
    const std::vector<Rgba> blue{{0, 0, 1}};
    std::map<Path, std::vector<Rgba>> readable{{"/red.png", red}, {"/blue.png", blue}};
    sources.palette = [&](const Path& url, int) {
        const auto found = readable.find(url);
        return found == readable.end() ? std::nullopt : std::optional(found->second);
    };
    const auto paletteOf = [&](const Path& url) { return WallpaperThemeReader::palette(url, 7, screen, sources); };
    EXPECT_FALSE(paletteOf("/damaged.png")) << "nor can the default picture";
    sources.defaultPicture = "/blue.png";
    EXPECT_EQ(paletteOf("/damaged.png"), blue);
    chosen = "/red.png";
    EXPECT_EQ(paletteOf("/damaged.png"), red);
    moving = "/blue.png";
    EXPECT_EQ(paletteOf("/damaged.png"), blue);
    asked.clear();
    EXPECT_EQ(paletteOf("/red.png"), red);
    EXPECT_TRUE(asked.empty()) << "no other source is needed";
}

} // namespace vantry
