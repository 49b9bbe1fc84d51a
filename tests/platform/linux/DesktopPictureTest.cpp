#include "platform/DesktopPicture.h"
#include "platform/OpenFiles.h"

#include "base/UniqueFd.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

class DesktopPicture : public testing::Test {
protected:
    DesktopPicture() {
        writeFile(root / "one.png", "1");
        writeFile(root / "two.png", "2");
    }

    fs::path write(const std::string& name, const std::string& text) const {
        fs::create_directories((root / name).parent_path());
        writeFile(root / name, text);
        return root / name;
    }
    /// A program of that name that prints `text`.
    void program(const std::string& name, const std::string& text) const {
        const auto file = write("bin/" + name, "#!/bin/sh\n" + text + "\n");
        ASSERT_EQ(chmod(file.c_str(), 0755), 0);
    }
    [[nodiscard]] std::string url(const std::string& name) const { return "file://" + (root / name).native(); }

    const TemporaryFolder root;
    const ScopedEnvironment home{"HOME", root.path().c_str()};
    const ScopedEnvironment configuration{"XDG_CONFIG_HOME", (root / "config").c_str()};
    const ScopedEnvironment path{"PATH", ((root / "bin").native() + ":/usr/bin:/bin").c_str()};
    const Screen screen{.name = "DP-1", .frame = {}};
};

} // namespace

TEST_F(DesktopPicture, IsTheSettingOfGnome) {
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    program("gsettings", "case \"$*\" in *picture-uri-dark) echo \"'" + url("two.png") +
                             "'\" ;; *picture-uri) echo \"'" + url("one.png") +
                             "'\" ;; *) echo \"'prefer-light'\" ;; esac");
    EXPECT_EQ(desktopPicture(screen), root / "one.png");
    program("gsettings", "case \"$*\" in *picture-uri-dark) echo \"'" + url("two.png") +
                             "'\" ;; *picture-uri) echo \"'" + url("one.png") +
                             "'\" ;; *) echo \"'prefer-dark'\" ;; esac");
    EXPECT_EQ(desktopPicture(screen), root / "two.png");
}

TEST_F(DesktopPicture, IsTheCurrentOneOfASlideshow) {
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "GNOME");
    program("gsettings", "echo \"'" + url("slides.xml") + "'\"");
    const auto slide = [this](const char* name) {
        return "<static><duration>5</duration><file>" + (root / name).native() + "</file></static>";
    };
    write("slides.xml", slide("one.png"));
    EXPECT_EQ(desktopPicture(screen), root / "one.png");
    write(".fehbg", "feh --bg-fill " + (root / "two.png").native());
    for (const std::string& text :
         {slide("missing.png"), slide("one.png") + std::string(1 << 20, ' '), std::string()}) {
        write("slides.xml", text);
        EXPECT_EQ(desktopPicture(screen), root / "two.png") << text.size();
    }
}

TEST_F(DesktopPicture, IsNotWaitedForWhenTheDesktopDoesNotAnswer) {
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "X-Cinnamon");
    program("gsettings", "exec sleep 600");
    write(".fehbg", "feh --bg-fill " + (root / "one.png").native());
    EXPECT_EQ(desktopPicture(screen), root / "one.png");
}

TEST_F(DesktopPicture, IsTheLargestPictureOfAPlasmaPackage) {
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "KDE");
    for (const char* size : {"1024x768.png", "5120x2880.png", "800x600.png"})
        write(std::string("package/contents/images/") + size, "1");
    write("config/plasma-org.kde.plasma.desktop-appletsrc",
          "[Containments][1][Wallpaper][org.kde.image][General]\nImage=" + (root / "package").native() + "\n");
    EXPECT_EQ(desktopPicture(screen), root / "package/contents/images/5120x2880.png");
}

TEST_F(DesktopPicture, IsThatOfTheRunningDesktop) {
    write("config/xfce4/xfconf/xfce-perchannel-xml/xfce4-desktop.xml",
          "<property name=\"monitorDP-1\"><property name=\"last-image\" value=\"" + (root / "one.png").native() +
              "\"/>");
    write("config/sway/config", "output * bg " + (root / "two.png").native() + " fill");
    {
        const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "XFCE");
        EXPECT_EQ(desktopPicture(screen), root / "one.png");
    }
    {
        const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "sway");
        EXPECT_EQ(desktopPicture(screen), root / "two.png");
    }
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "swayed:XFCES");
    EXPECT_EQ(desktopPicture(screen), std::nullopt);
}

TEST_F(DesktopPicture, IsAbsentWhenTheFileIsMissing) {
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "XFCE");
    EXPECT_EQ(desktopPicture(screen), std::nullopt);
    write(".fehbg", "feh --bg-fill " + (root / "missing.png").native());
    EXPECT_EQ(desktopPicture(screen), std::nullopt);
    write(".fehbg", "feh --bg-fill " + root.path().native());
    EXPECT_EQ(desktopPicture(screen), std::nullopt);
    fs::create_symlink(root / "one.png", root / "link.png");
    write(".fehbg", "feh --bg-fill " + (root / "link.png").native());
    EXPECT_EQ(desktopPicture(screen), root / "link.png");
}

TEST_F(DesktopPicture, IsNeverAMovingOneHere) { EXPECT_EQ(movingWallpaper(), std::nullopt); }

TEST(OpenFiles, OfAProcessAreInTheOrderOfTheirDescriptors) {
    const TemporaryFolder root;
    writeFile(root / "one film.mov", "1");
    writeFile(root / "two.png", "2");
    const UniqueFd one(open((root / "one film.mov").c_str(), O_RDONLY | O_CLOEXEC));
    const UniqueFd two(open((root / "two.png").c_str(), O_RDONLY | O_CLOEXEC));
    const auto files = openFilesOfProcess(getpid());
    const auto first = std::ranges::find(files, root / "one film.mov");
    ASSERT_NE(first, files.end());
    EXPECT_NE(std::find(first, files.end(), root / "two.png"), files.end());
}

TEST(OpenFiles, OfAMissingProcessAreEmpty) {
    EXPECT_TRUE(openFilesOfProcess(-1).empty());
    EXPECT_TRUE(openFilesOfProcess(1 << 30).empty());
}

} // namespace vantry
