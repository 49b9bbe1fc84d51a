#pragma once

#include "platform/PinnedFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace vantry {

[[nodiscard]] inline struct stat statOf(const std::filesystem::path& path) {
    struct stat facts = {};
    EXPECT_EQ(lstat(path.c_str(), &facts), 0) << path;
    return facts;
}

[[nodiscard]] inline struct stat statOf(int fd) {
    struct stat facts = {};
    EXPECT_EQ(fstat(fd, &facts), 0);
    return facts;
}

/// "folder/deeper" with "file" in it.
class Pinned : public testing::Test {
protected:
    Pinned() : root(std::filesystem::canonical(temporary.path())) {
        std::filesystem::create_directories(root / "folder/deeper");
        writeFile(file, "text");
        writeFile(folder / "other", "text");
    }

    [[nodiscard]] std::shared_ptr<const PinnedFolder> pinnedFolder() const {
        return PinnedFolder::open(folder).value();
    }
    [[nodiscard]] PinnedFile pinnedFile() const { return PinnedFile::open(pinnedFolder(), "file").value(); }

    /// Empty when the folder is pinned.
    [[nodiscard]] static std::optional<PinFailure> failure(const std::filesystem::path& path) {
        const auto pinned = PinnedFolder::open(path);
        return pinned ? std::nullopt : std::optional(pinned.error());
    }
    [[nodiscard]] std::optional<PinFailure> fileFailure(const std::string& name) const {
        const auto pinned = PinnedFile::open(pinnedFolder(), name);
        return pinned ? std::nullopt : std::optional(pinned.error());
    }

    TemporaryFolder temporary;
    std::filesystem::path root;
    std::filesystem::path folder = root / "folder/deeper";
    std::filesystem::path file = folder / "file";
};

using PinnedFolderTest = Pinned;
using PinnedFileTest = Pinned;

/// Whether folders are pinned and refused as they should be, in words.
[[nodiscard]] inline std::string folderAnswers(const std::filesystem::path& root) {
    std::filesystem::create_directories(root / "real/folder");
    std::filesystem::create_directory_symlink(root / "real", root / "link");
    std::filesystem::create_directory_symlink("folder", root / "real/link");
    std::filesystem::create_directory_symlink("nowhere", root / "broken");
    writeFile(root / "file", "");
    const std::vector<std::pair<const char*, std::optional<PinFailure>>> cases{
        {"", std::nullopt},
        {"real", std::nullopt},
        {"real/folder", std::nullopt},
        {"real//folder/", std::nullopt},
        {"link", PinFailure::link},
        {"link/", PinFailure::link},
        {"link/folder", PinFailure::link},
        {"real/link", PinFailure::link},
        {"broken", PinFailure::link},
        {"broken/folder", PinFailure::link},
        {"missing", PinFailure::missing},
        {"missing/deeper", PinFailure::missing},
        {"file", PinFailure::missing},
        {"file/deeper", PinFailure::missing},
    };
    for (const auto& [name, expected] : cases) {
        const auto pinned = PinnedFolder::open(root / name);
        const auto actual = pinned ? std::nullopt : std::optional(pinned.error());
        if (actual != expected)
            return std::string("wrong about \"") + name + '"';
        if (pinned &&
            (statOf((*pinned)->descriptor()).st_ino != statOf(std::filesystem::canonical(root / name)).st_ino ||
             !(*pinned)->isInPlace()))
            return std::string("another folder than \"") + name + '"';
    }
    return PinnedFolder::open("/") ? "right" : "wrong about /";
}

} // namespace vantry
