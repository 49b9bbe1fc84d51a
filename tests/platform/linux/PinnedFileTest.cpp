#include "platform/PinnedFile.h"

#include "tests/platform/contract/PinnedFileFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

} // namespace

// Older kernels and sandboxes without openat2, and a file system in which something is always being renamed.
TEST_F(PinnedFolderTest, DoesTheSameWhereTheSystemOffersNoSuchCall) {
    for (const int errorNumber : {ENOSYS, EPERM, EINVAL, EAGAIN}) {
        const fs::path home = root / std::to_string(errorNumber);
        fs::create_directory(home);
        const std::string answer = inChildProcess([&]() -> std::string {
            if (!refuseCall(SYS_openat2, errorNumber))
                return "not refused";
            return syscall(SYS_openat2, AT_FDCWD, "/", nullptr, 0) == -1 && errno == errorNumber ? folderAnswers(home)
                                                                                                 : "not refused";
        });
        if (answer == "not refused")
            GTEST_SKIP() << "may not filter system calls";
        EXPECT_EQ(answer, "right") << std::strerror(errorNumber);
    }
}

TEST_F(PinnedFileTest, AnswersForTheItemWhateverItsNameLeadsTo) {
    const PinnedFile pinned = pinnedFile();
    const auto before = pinned.facts();
    fs::rename(file, folder / "renamed");
    EXPECT_EQ(pinned.facts(), before);
    writeFile(file, "another text");
    EXPECT_EQ(pinned.facts(), before);
    fs::rename(folder, root / "moved");
    EXPECT_EQ(pinned.facts(), before);
    fs::remove(root / "moved/renamed");
    EXPECT_EQ(pinned.facts(), before);
}

// The same file in another place: a call by name would act on the mounted item.
TEST_F(PinnedFileTest, WhatIsMountedOverItIsAnotherPlace) {
    const std::string answer = inChildProcess([&]() -> std::string {
        const auto mountOnItself = [](const fs::path& path) {
            return mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) == 0;
        };
        if (!keepMountsPrivate())
            return "not mounted";
        const PinnedFile pinned = pinnedFile();
        if (!mountOnItself(file))
            return "not mounted";
        if (pinned.place() != PinnedPlace::otherItem)
            return "wrong about the file";
        if (umount(file.c_str()) != 0 || !mountOnItself(folder))
            return "not mounted";
        return pinned.place() == PinnedPlace::folderMoved ? "right" : "wrong about the folder";
    });
    if (answer == "not mounted")
        GTEST_SKIP() << "may not mount";
    EXPECT_EQ(answer, "right");
}

TEST_F(PinnedFileTest, NeedsNoPermissionOnTheItem) {
    fs::permissions(temporary.path(), fs::perms(0755));
    fs::permissions(file, fs::perms::none);
    fs::permissions(folder, fs::perms(0311)); // may be passed, not be read
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "still the same user";
        const auto pinned = PinnedFile::open(pinnedFolder(), "file");
        return pinned && pinned->facts() && pinned->place() == PinnedPlace::unchanged ? "right" : "wrong";
    });
    fs::permissions(folder, fs::perms::owner_all);
    if (answer == "still the same user")
        GTEST_SKIP() << "may not become another user";
    EXPECT_EQ(answer, "right");
}

} // namespace vantry
