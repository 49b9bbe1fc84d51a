#include "platform/apple/PromptLookup.h"

#include "tests/platform/apple/OnDarwin.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <expected>
#include <filesystem>
#include <string>
#include <sys/param.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

using Place = std::expected<fs::path, int>;

/// "folder/file", and links: "toFolder", "folder/toFile", "twice" by two links, "absolute", "up", "broken", "loop".
class PromptLookup : public OnDarwin {
protected:
    PromptLookup() {
        fs::create_directories(root / "folder/inside");
        writeFile(root / "folder/file", "");
        fs::create_directory_symlink("folder", root / "toFolder");
        fs::create_symlink("file", root / "folder/toFile");
        fs::create_symlink("./toFolder/../toFolder//toFile", root / "twice");
        fs::create_directory_symlink(root / "folder", root / "absolute");
        fs::create_directory_symlink("../..", root / "folder/inside/up");
        fs::create_symlink("nowhere", root / "broken");
        fs::create_symlink("loop", root / "loop");
    }

    [[nodiscard]] Place kept(const std::string& name) const { return promptPath(root / name, FinalLink::isKept); }
    [[nodiscard]] Place followed(const std::string& name) const {
        return promptPath(root / name, FinalLink::isFollowed);
    }

    const TemporaryFolder temporary;
    const fs::path root = fs::canonical(temporary.path());
};

} // namespace

TEST_F(PromptLookup, FollowsLinksAsTheSystemDoes) {
    for (const char* name : {"", "folder", "folder/file", "toFolder", "toFolder/file", "toFolder/toFile", "twice",
                             "absolute/toFile", "folder/inside/up", "folder/inside/up/folder/inside/up/twice",
                             "folder/..", "toFolder/../folder", "folder/./file", "folder//file", "folder/", "toFolder/",
                             "toFolder/.", "../" /* as far as the folder of the test */})
        EXPECT_EQ(followed(name), fs::canonical(root / name)) << name;
    EXPECT_EQ(promptPath("/", FinalLink::isFollowed), fs::path("/"));
    EXPECT_EQ(promptPath("/../..", FinalLink::isFollowed), fs::path("/"));
}

TEST_F(PromptLookup, KeepsOnlyALinkAtTheEnd) {
    for (const char* name : {"toFolder", "twice", "broken", "loop", "folder/toFile"})
        EXPECT_EQ(kept(name), root / name) << name;
    EXPECT_EQ(kept("toFolder/"), root / "toFolder") << "as a slash changes nothing elsewhere";
    EXPECT_EQ(kept("toFolder/toFile"), root / "folder/toFile");
    EXPECT_EQ(kept("absolute/toFile"), root / "folder/toFile");
    EXPECT_EQ(kept("toFolder/.."), root);
    EXPECT_EQ(kept("toFolder/."), root / "folder");
}

TEST_F(PromptLookup, FollowsAsManyLinksAsTheSystemDoes) {
    fs::create_symlink("folder", root / "link 1");
    for (int i = 2; i <= MAXSYMLINKS + 1; ++i)
        fs::create_symlink("link " + std::to_string(i - 1), root / ("link " + std::to_string(i)));
    EXPECT_EQ(followed("link " + std::to_string(MAXSYMLINKS)), root / "folder");
    EXPECT_EQ(followed("link " + std::to_string(MAXSYMLINKS + 1)), Place(std::unexpect, ELOOP));
}

TEST_F(PromptLookup, ReturnsTheReasonOfAFailure) {
    EXPECT_EQ(followed("broken"), Place(std::unexpect, ENOENT));
    EXPECT_EQ(followed("loop"), Place(std::unexpect, ELOOP));
    EXPECT_EQ(kept("loop/file"), Place(std::unexpect, ELOOP));
    EXPECT_EQ(kept("missing"), Place(std::unexpect, ENOENT));
    EXPECT_EQ(kept("missing/.."), Place(std::unexpect, ENOENT));
    EXPECT_EQ(kept("folder/file/below"), Place(std::unexpect, ENOTDIR));
    EXPECT_EQ(kept(std::string(256, 'n')), Place(std::unexpect, ENAMETOOLONG));
    EXPECT_EQ(promptPath("", FinalLink::isKept), Place(std::unexpect, ENOENT));
    system.mountsError = ENOMEM;
    EXPECT_EQ(kept("folder"), Place(std::unexpect, ENOMEM));
}

// None of the mounted folders is there: whoever asked for one would be told so.
TEST_F(PromptLookup, DoesNotAskFileSystemsThatMayWait) {
    for (const char* type : {"smbfs", "nfs", "autofs", "macfuse", "lifs", "webdav", "unknown"}) {
        system.mounts = {{"apfs", "/"}, {type, root / "share"}};
        for (const char* name : {"share", "share/", "share/file", "toFolder/../share/file", "SHARE/file", "Share",
                                 "folder/inside/up/share", "share/../folder"})
            EXPECT_EQ(kept(name), Place(std::unexpect, EAGAIN)) << type << ": " << name;
        EXPECT_EQ(kept("shared"), Place(std::unexpect, ENOENT));
        EXPECT_EQ(kept("shar"), Place(std::unexpect, ENOENT));
        EXPECT_EQ(kept("folder/share"), Place(std::unexpect, ENOENT));
    }
    fs::create_symlink("share/file", root / "toShare");
    EXPECT_EQ(kept("toShare"), root / "toShare");
    EXPECT_EQ(followed("toShare"), Place(std::unexpect, EAGAIN));
}

TEST_F(PromptLookup, AsksLocalDisks) {
    for (const char* type : {"apfs", "hfs", "msdos", "exfat", "ntfs", "udf", "cd9660", "devfs", "tmpfs", "ufs"}) {
        system.mounts = {{"apfs", "/"}, {type, root / "folder"}};
        EXPECT_EQ(kept("folder/file"), root / "folder/file") << type;
    }
}

TEST_F(PromptLookup, HandlesAnyNumberOfMounts) {
    for (const std::size_t count : {62U, 63U, 64U, 65U, 300U}) {
        system.mounts.assign(count, {"apfs", "/"});
        system.mounts.push_back({"smbfs", root / "share"});
        EXPECT_EQ(kept("share/file"), Place(std::unexpect, EAGAIN)) << count;
    }
}

} // namespace vantry
