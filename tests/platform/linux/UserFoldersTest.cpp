#include "platform/linux/UserFolders.h"

#include "platform/UserSession.h"
#include "tests/support/FileFacts.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace vantry {
namespace {

using Folders = std::map<std::string, std::filesystem::path>;

TEST(UserFolders, AreReadWithTheirQuotes) {
    EXPECT_EQ(userFolders(R"(# This file is written by xdg-user-dirs-update
XDG_DESKTOP_DIR="$HOME/Bureau"
 XDG_DOWNLOAD_DIR = "$HOME/Téléchargements/"  # mine
XDG_MUSIC_DIR="/disk/a \"loud\" \\ place/\$HOME"
XDG_VIDEOS_DIR="$HOME"
XDG_PICTURES_DIR="$HOME/one"
XDG_PICTURES_DIR="$HOME/two/../three"
XDG_TEMPLATES_DIR="Templates"
XDG_TEMPLATES_DIR="\$HOME/Templates"
XDG_TEMPLATES_DIR="$HOMEWORK/Templates"
XDG_TEMPLATES_DIR=$HOME/Templates
XDG_TEMPLATES_DIR="/no end
XDG_TEMPLATES_DIR="/no end\
XDG_TEMPLATES_DIR=
XDG_TEMPLATES_DIR
#XDG_TEMPLATES_DIR="/a comment"
OTHER_DIR="/other"
XDG_DOCUMENTS_DIR="/the/last/line")",
                          "/home/ada"),
              (Folders{{"XDG_DESKTOP_DIR", "/home/ada/Bureau"},
                       {"XDG_DOWNLOAD_DIR", "/home/ada/Téléchargements"},
                       {"XDG_MUSIC_DIR", "/disk/a \"loud\" \\ place/$HOME"},
                       {"XDG_VIDEOS_DIR", "/home/ada"},
                       {"XDG_PICTURES_DIR", "/home/ada/three"},
                       {"XDG_DOCUMENTS_DIR", "/the/last/line"}}));
}

TEST(UserFolders, ADownloadFolderThatIsOrHoldsAnotherFolderOfTheUserCountsAsUnset) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "/home/ada/Downloads"},
        {R"(XDG_DOWNLOAD_DIR="$HOME/Loads")", "/home/ada/Loads"},
        {R"(XDG_DOWNLOAD_DIR="$HOME/Documents/Loads")", "/home/ada/Documents/Loads"},
        {R"(XDG_DOWNLOAD_DIR="/disk/loads")", "/disk/loads"},
        {R"(XDG_DOWNLOAD_DIR="$HOME/")", "/home/ada/Downloads"},
        {R"(XDG_DOWNLOAD_DIR="$HOME")", "/home/ada/Downloads"},
        {R"(XDG_DOWNLOAD_DIR="$HOME/x/..")", "/home/ada/Downloads"},
        {R"(XDG_DOWNLOAD_DIR="/home/ada")", "/home/ada/Downloads"},
        {R"(XDG_DOWNLOAD_DIR="/home")", "/home/ada/Downloads"},
        {R"(XDG_DOWNLOAD_DIR="/")", "/home/ada/Downloads"},
        {R"(XDG_DOWNLOAD_DIR="Loads")", "/home/ada/Downloads"},
        {R"(XDG_DOWNLOAD_DIR="$HOME/Documents")", "/home/ada/Downloads"},
        {R"(XDG_DOWNLOAD_DIR="$HOME/Desktop/")", "/home/ada/Downloads"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/Papers\"\nXDG_DOCUMENTS_DIR=\"$HOME/Papers\"", "/home/ada/Downloads"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/All\"\nXDG_MUSIC_DIR=\"$HOME/All/Music\"", "/home/ada/Downloads"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/All\"\nXDG_MUSIC_DIR=\"$HOME/Allegro\"", "/home/ada/All"},
        // "Documents" is nobody's folder then.
        {"XDG_DOWNLOAD_DIR=\"$HOME/Documents\"\nXDG_DOCUMENTS_DIR=\"$HOME/Papers\"", "/home/ada/Documents"},
    };
    for (const auto& [text, folder] : cases)
        EXPECT_EQ(downloadFolder(text, "/home/ada"), folder) << text;
}

TEST(UserFolders, ADownloadFolderThatLeadsToAnotherFolderOfTheUserCountsAsUnset) {
    namespace fs = std::filesystem;
    const TemporaryFolder root;
    const auto disk = fs::canonical(root.path()) / "disk";
    const auto home = root / "home";
    for (const char* name : {"Documents", "Stuff/Music", "Loads"})
        fs::create_directories(disk / name);
    fs::create_symlink(disk, home);
    fs::create_symlink("Stuff", disk / "Pictures");
    fs::create_symlink("Pictures", disk / "Link");
    fs::create_symlink("Loads", disk / "Linked loads");
    const std::string documents = "XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\nXDG_MUSIC_DIR=\"$HOME/Stuff/Music\"\n";
    for (const auto& folder : {disk, disk.parent_path(), disk / "Documents", home / "Stuff", disk / "Stuff",
                               home / "Link", disk / "Pictures", disk / "Videos" /* which is missing */})
        for (const auto& asNamed : {home, disk})
            EXPECT_EQ(downloadFolder(documents + "XDG_DOWNLOAD_DIR=\"" + folder.native() + "\"", asNamed),
                      asNamed / "Downloads")
                << folder;
    for (const auto& folder : {disk / "Loads", home / "Loads", home / "Linked loads", disk / "missing"})
        EXPECT_EQ(downloadFolder(documents + "XDG_DOWNLOAD_DIR=\"" + folder.native() + "\"", home), folder);
}

TEST(UserFolders, AreThoseOfTheConfigurationFolder) {
    const TemporaryFolder home;
    const auto write = [&](const char* folder, const char* name) {
        std::filesystem::create_directories(home.path() / folder);
        writeFile(home.path() / folder / "user-dirs.dirs", std::string("XDG_DOWNLOAD_DIR=\"$HOME/") + name + "\"\n");
    };
    {
        const ScopedEnvironment unset("XDG_CONFIG_HOME", nullptr);
        EXPECT_EQ(downloadFolder(home.path()), home.path() / "Downloads");
        write(".config", "usual");
        EXPECT_EQ(downloadFolder(home.path()), home.path() / "usual");
    }
    write("settings", "own");
    const ScopedEnvironment own("XDG_CONFIG_HOME", (home.path() / "settings").c_str());
    EXPECT_EQ(downloadFolder(home.path()), home.path() / "own");
    const ScopedEnvironment relative("XDG_CONFIG_HOME", "settings");
    EXPECT_EQ(downloadFolder(home.path()), home.path() / "usual");
}

} // namespace
} // namespace vantry
