#include "platform/linux/WallpaperSettings.h"

#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace vantry {

namespace {

using Picture = std::optional<std::filesystem::path>;

constexpr std::string_view plasma = R"([ActionPlugins][0]
RightButton;NoModifier=org.kde.contextmenu

[Containments][1]
lastScreen=1
plugin=org.kde.plasma.folder
wallpaperplugin=org.kde.image

[Containments][1][Wallpaper][org.kde.image][General]
Image=file:///pictures/second%20screen.jpg

[Containments][7]
lastScreen=0
wallpaperplugin=org.kde.image

[Containments][7][Wallpaper][org.kde.color][General]
Image=/not/this.png

[Containments][7][Wallpaper][org.kde.image][General]
Image=/pictures/first.png
SlidePaths=/usr/share/wallpapers
)";

constexpr std::string_view xfce = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-desktop" version="1.0">
  <property name="backdrop" type="empty">
    <property name="screen0" type="empty">
      <property name="monitorHDMI-1" type="empty">
        <property name="workspace0" type="empty">
          <property name="last-image" type="string" value="/pictures/tea &amp; cake.png"/>
        </property>
        <property name="workspace1" type="empty">
          <property name="last-image" type="string" value="/pictures/other workspace.png"/>
        </property>
      </property>
      <property name="monitoreDP-1" type="empty">
        <property name="workspace0" type="empty">
          <property name="color-style" type="int" value="0"/>
          <property name="last-image" type="string" value="/pictures/laptop.png"/>
        </property>
      </property>
    </property>
  </property>
</channel>
)";

constexpr std::string_view sway = R"(# output * bg /commented.png fill
set $mod Mod4
output HDMI-A-1 resolution 1920x1080 position 0,0 bg "/pictures/with space.png" fill
output eDP-1 {
    scale 2
    background ~/wall.jpg stretch
}
output * bg $HOME/all.png fill
bindsym $mod+bg exec /bin/true
)";

constexpr std::string_view hyprland = R"(preload = /not/this.png
# wallpaper = ,/commented.png
wallpaper = eDP-1, contain:/pictures/laptop.png
wallpaper = ,~/all.png # the others
wallpaper {
    monitor = DP-3
    path = /pictures/block.png
}
)";

} // namespace

TEST(WallpaperSettings, AcceptAFileUrlOrAnAbsolutePath) {
    const struct {
        std::string_view text;
        Picture path;
    } cases[] = {
        {"/a/b c.png", "/a/b c.png"},
        {"file:///a/b%20c.png", "/a/b c.png"},
        {"file://host/a.png", "/a.png"},
        {"file:///caf%E9%zz%4", "/caf\xe9%zz%4"},
        {"file://", std::nullopt},
        {"file://host", std::nullopt},
        {"http://example.com/a.png", std::nullopt},
        {"a.png", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, path] : cases)
        EXPECT_EQ(pathOfUrl(text), path) << text;
}

TEST(WallpaperSettings, ReadTheTextThatGsettingsPrints) {
    const struct {
        std::string_view printed;
        std::optional<std::string> text;
    } cases[] = {
        {"'file:///a.png'\n", "file:///a.png"},
        {"\"it's\"\n", "it's"},
        {"'it\\'s \\\\ here'", "it's \\ here"},
        {"''\n", ""},
        {"'", std::nullopt},
        {"uint32 5\n", std::nullopt},
        {"", std::nullopt},
        {"No such schema\n", std::nullopt},
        {"'\\'", "\\"},
    };
    for (const auto& [printed, text] : cases)
        EXPECT_EQ(textOfGVariant(printed), text) << printed;
}

constexpr const char* slideshow = R"(<?xml version="1.0"?>
<!-- <static><duration>1</duration><file>/commented out.jpg</file></static> -->
<background>
  <starttime>
    <year>2026</year><month>1</month><day>31</day>
    <hour>08</hour><minute>00</minute><second>00</second>
  </starttime>
  <static> <duration>3590.0</duration> <file>/pictures/Morning &amp; Dew.jpg</file> </static>
  <transition type="overlay">
    <duration>10.5</duration> <from>/pictures/Morning &amp; Dew.jpg</from> <to>/pictures/noon.jxl</to>
  </transition>
  <static>
    <duration>600</duration>
    <file>
      <size width="1024" height="768">/pictures/small.jpg</size>
      <size width="3840" height="2160">/pictures/noon.jxl</size>
      <size width="1600" height="1200">/pictures/middle.jpg</size>
    </file>
  </static>
</background>)";

TEST(WallpaperSettings, OfASlideshowNameItsCurrentPicture) {
    const ScopedEnvironment zone("TZ", "HERE-2");
    constexpr std::int64_t start = 1'769'839'200; // 2026-01-31T08:00:00 two hours east of Greenwich
    constexpr double round = 3590 + 10.5 + 600;
    const struct {
        double seconds;
        const char* picture;
    } cases[] = {
        {0, "/pictures/Morning & Dew.jpg"},    {3589, "/pictures/Morning & Dew.jpg"},
        {3595, "/pictures/Morning & Dew.jpg"}, {3596, "/pictures/noon.jxl"},
        {3601, "/pictures/noon.jxl"},          {4200, "/pictures/noon.jxl"},
        {4201, "/pictures/Morning & Dew.jpg"}, {2 * round, "/pictures/Morning & Dew.jpg"},
        {2 * round - 1, "/pictures/noon.jxl"}, {-1, "/pictures/noon.jxl"},
        {-601, "/pictures/noon.jxl"},          {-611, "/pictures/Morning & Dew.jpg"},
    };
    for (const auto& [seconds, picture] : cases)
        EXPECT_EQ(slideshowPicture(slideshow, start + static_cast<std::int64_t>(seconds)),
                  std::filesystem::path(picture))
            << seconds;
}

TEST(WallpaperSettings, OfAnInvalidSlideshowNameNoPicture) {
    const std::string slide = "<static><duration>5</duration><file>/a.png</file></static>";
    EXPECT_EQ(slideshowPicture(slide, 0), std::filesystem::path("/a.png"));
    EXPECT_EQ(slideshowPicture("<static><duration>0</duration><file>/a.png</file></static>", 7),
              std::filesystem::path("/a.png"));
    EXPECT_EQ(slideshowPicture("<static><file>\n /a.png \n</file></static>", 7), std::filesystem::path("/a.png"));
    for (const std::string text : {"", "<", "<background></background>", "<static><duration>5</duration></static>",
                                   "<static><file>a.png</file></static>", "<static><file>/a.png</file>", "<!-- "})
        EXPECT_EQ(slideshowPicture(text, 0), std::nullopt) << text;
    EXPECT_EQ(slideshowPicture(slide + "</static>", 7), std::filesystem::path("/a.png")) << "ended twice";
    std::string many;
    for (int i = 0; i < 4096; ++i)
        many += slide;
    EXPECT_EQ(slideshowPicture(many, 0), std::filesystem::path("/a.png"));
    EXPECT_EQ(slideshowPicture(many + slide + slide, 0), std::nullopt);
}

TEST(WallpaperSettings, OfPlasmaNameThePictureOfTheFirstScreen) {
    EXPECT_EQ(plasmaPicture(plasma), "/pictures/first.png");
    const auto second = plasma.substr(0, plasma.find("[Containments][7]"));
    EXPECT_EQ(plasmaPicture(second), "/pictures/second screen.jpg");
    for (const std::string_view text : {"", "[Containments][", "[Containments][]\nImage=/a\n", "Image=/a.png\n",
                                        "[Containments][1][Wallpaper][org.kde.image][General]\nImage=relative\n"})
        EXPECT_EQ(plasmaPicture(text), std::nullopt) << text;
}

TEST(WallpaperSettings, OfXfceNameThePictureOfTheScreensFirstWorkspace) {
    EXPECT_EQ(xfcePicture(xfce, "HDMI-1"), "/pictures/tea & cake.png");
    EXPECT_EQ(xfcePicture(xfce, "eDP-1"), "/pictures/laptop.png");
    EXPECT_EQ(xfcePicture(xfce, "DP-9"), "/pictures/tea & cake.png");
    for (const std::string_view text :
         {"", "<", "<property name=\"last-image\"", "<property name=\"last-image\" value=\"",
          R"(<property name="last-image" value="relative"/>)", "no XML"})
        EXPECT_EQ(xfcePicture(text, "HDMI-1"), std::nullopt) << text;
}

TEST(WallpaperSettings, OfLxqtNameOnePicture) {
    EXPECT_EQ(lxqtPicture("[Desktop]\nWallpaperMode=stretch\nWallpaper=/pictures/a b.png\n"), "/pictures/a b.png");
    EXPECT_EQ(lxqtPicture("[Desktop]\nWallpaper=\n"), std::nullopt);
    EXPECT_EQ(lxqtPicture(""), std::nullopt);
}

TEST(WallpaperSettings, OfSwayNameThePictureOfTheScreenOrOfAll) {
    EXPECT_EQ(swayPicture(sway, "HDMI-A-1", "/home/a"), "/pictures/with space.png");
    EXPECT_EQ(swayPicture(sway, "eDP-1", "/home/a"), "/home/a/wall.jpg");
    EXPECT_EQ(swayPicture(sway, "DP-2", "/home/a"), "/home/a/all.png");
    for (const std::string_view text : {"", "output", "output *", "output * bg", "output * bg relative fill",
                                        "bg /a.png", "output * {\n}\nbg /a.png fill\n"})
        EXPECT_EQ(swayPicture(text, "DP-2", "/home/a"), std::nullopt) << text;
}

TEST(WallpaperSettings, OfHyprlandNameThePictureOfTheScreenOrOfAll) {
    EXPECT_EQ(hyprlandPicture(hyprland, "eDP-1", "/home/a"), "/pictures/laptop.png");
    EXPECT_EQ(hyprlandPicture(hyprland, "DP-3", "/home/a"), "/pictures/block.png");
    EXPECT_EQ(hyprlandPicture(hyprland, "HDMI-1", "/home/a"), "/home/a/all.png");
    for (const std::string_view text :
         {"", "wallpaper", "wallpaper =", "wallpaper = ,", "wallpaper = /a.png", "path ="})
        EXPECT_EQ(hyprlandPicture(text, "eDP-1", "/home/a"), std::nullopt) << text;
}

TEST(WallpaperSettings, OfFehAreItsLastCommand) {
    const struct {
        std::string_view script;
        Picture picture;
    } cases[] = {
        {"#!/bin/sh\nfeh --no-fehbg --bg-scale '/pictures/a b.jpg' \n", "/pictures/a b.jpg"},
        {"#!/bin/sh\n/usr/bin/feh --bg-fill '/it'\\''s.jpg' '/second.jpg'\n", "/it's.jpg"},
        {"feh --bg-fill \"/a \\\"b\\\".png\"", "/a \"b\".png"},
        {"feh --bg-center --image-bg black /plain.png", "/plain.png"},
        {"#!/bin/sh\necho /a.png\n", std::nullopt},
        {"feh --bg-scale 'relative.png'", std::nullopt},
        {"feh --bg-scale '/no end", "/no end"},
        {"feh \\", std::nullopt},
        {"feh", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [script, picture] : cases)
        EXPECT_EQ(fehPicture(script), picture) << script;
}

TEST(WallpaperSettings, OfNitrogenNameOnePicture) {
    EXPECT_EQ(nitrogenPicture("[xin_-1]\nfile=/pictures/a=b.png\nmode=5\n"), "/pictures/a=b.png");
    EXPECT_EQ(nitrogenPicture("[xin_-1]\nmode=5\n"), std::nullopt);
}

} // namespace vantry
