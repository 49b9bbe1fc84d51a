#include "platform/FoundItem.h"

#include "base/UniqueFd.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <memory>
#include <optional>
#include <sched.h>
#include <set>
#include <string>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

/// Asked of the system itself, so that a fingerprint without a handle cannot pass for a file system without them.
bool hasHandles(const fs::path& path) {
    alignas(file_handle) std::array<unsigned char, sizeof(file_handle) + MAX_HANDLE_SZ> storage{};
    auto* const handle = reinterpret_cast<file_handle*>(storage.data());
    handle->handle_bytes = MAX_HANDLE_SZ;
    int mount = 0;
    return name_to_handle_at(AT_FDCWD, path.c_str(), handle, &mount, 0) == 0;
}

/// A folder on a file system that has handles; null where there is none.
std::unique_ptr<TemporaryFolder> folderWithHandles() {
    for (const char* place : {static_cast<const char*>(nullptr), "/dev/shm", "/var/tmp"}) {
        std::unique_ptr<TemporaryFolder> folder;
        if (!place) {
            folder = std::make_unique<TemporaryFolder>();
        } else if (access(place, W_OK) == 0) {
            const ScopedEnvironment there("TMPDIR", place);
            folder = std::make_unique<TemporaryFolder>();
        }
        if (folder && hasHandles(folder->path()))
            return folder;
    }
    return nullptr;
}

void setModified(const fs::path& file, timespec time) {
    const timespec times[2] = {{0, UTIME_OMIT}, time};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

std::int64_t nanosecondsOf(const struct timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

/// From here on the process's `name_to_handle_at` fails with EPERM, as in a container that does not permit it.
bool refuseHandles() {
    std::array<sock_filter, 4> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_name_to_handle_at, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog filter{program.size(), program.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

/// What is mounted from here on is mounted for the process alone, and gone with it.
bool keepMountsPrivate() {
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool mountPrivately(const char* type, const fs::path& point, const std::string& options) {
    return keepMountsPrivate() && mount(type, point.c_str(), type, 0, options.c_str()) == 0;
}

} // namespace

TEST(FileFingerprint, OfAMissingPathHasNothing) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    for (const fs::path& path : {folder / "missing", folder / "missing/deeper", folder / "file/below", fs::path(),
                                 folder / std::string(256, 'n')})
        EXPECT_EQ(readFileFingerprint(path), FileFingerprint()) << path;
}

TEST(FileFingerprint, OfABadDescriptorHasNothing) { EXPECT_EQ(readFileFingerprint(-1), FileFingerprint()); }

TEST(FileFingerprint, OfAFileHasEverything) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "text");
    const FileFingerprint fingerprint = readFileFingerprint(folder / "file");
    struct stat facts = {};
    ASSERT_EQ(stat((folder / "file").c_str(), &facts), 0);
    ASSERT_TRUE(fingerprint.contentModificationDate);
    EXPECT_EQ(fingerprint.contentModificationDate->time_since_epoch().count(), nanosecondsOf(facts.st_mtim));
    EXPECT_FALSE(fingerprint.resourceIdentifier.value_or("").empty());
    EXPECT_FALSE(fingerprint.volumeIdentifier.value_or("").empty());
}

TEST(FileFingerprint, OfAnUnchangedFileIsTheSame) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "text");
    EXPECT_EQ(readFileFingerprint(folder / "file"), readFileFingerprint(folder / "file"));
}

TEST(FileFingerprint, NoTwoFilesHaveOneResourceIdentifier) {
    const TemporaryFolder folder;
    writeFile(folder / "one", "");
    writeFile(folder / "other", "");
    EXPECT_NE(readFileFingerprint(folder / "one").resourceIdentifier,
              readFileFingerprint(folder / "other").resourceIdentifier);
}

TEST(FileFingerprint, KeepsTheDateToTheNanosecond) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    for (const timespec& time : {timespec{1'600'000'000, 123'456'789}, timespec{1'600'000'000, 123'456'790},
                                 timespec{0, 0}, timespec{-1, 999'999'999}, timespec{4'000'000'000, 1}}) {
        setModified(folder / "file", time);
        const auto date = readFileFingerprint(folder / "file").contentModificationDate;
        ASSERT_TRUE(date);
        EXPECT_EQ(date->time_since_epoch().count(), nanosecondsOf(time));
    }
}

TEST(FileFingerprint, ADateThatIsTooFarAwayIsHeldAtTheEnd) {
    std::unique_ptr<TemporaryFolder> folder;
    {
        const ScopedEnvironment inMemory("TMPDIR", "/dev/shm"); // tmpfs holds any date
        if (access("/dev/shm", W_OK) == 0)
            folder = std::make_unique<TemporaryFolder>();
    }
    if (!folder)
        GTEST_SKIP() << "no /dev/shm";
    writeFile(*folder / "file", "");
    setModified(*folder / "file", {20'000'000'000, 0});
    struct stat facts = {};
    ASSERT_EQ(stat((*folder / "file").c_str(), &facts), 0);
    if (facts.st_mtim.tv_sec != 20'000'000'000)
        GTEST_SKIP() << "/dev/shm does not hold the year 2603";
    EXPECT_EQ(readFileFingerprint(*folder / "file").contentModificationDate, SystemTime::max());
    setModified(*folder / "file", {-20'000'000'000, 0});
    EXPECT_EQ(readFileFingerprint(*folder / "file").contentModificationDate, SystemTime::min());
}

TEST(FileFingerprint, WritingChangesTheDateAndNotTheResourceIdentifier) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "text");
    setModified(folder / "file", {1'600'000'000, 0});
    const FileFingerprint before = readFileFingerprint(folder / "file");
    writeFile(folder / "file", "other text");
    const FileFingerprint after = readFileFingerprint(folder / "file");
    EXPECT_NE(after.contentModificationDate, before.contentModificationDate);
    EXPECT_EQ(after.resourceIdentifier, before.resourceIdentifier);
    EXPECT_EQ(after.volumeIdentifier, before.volumeIdentifier);
}

TEST(FileFingerprint, RenamingPermissionsAndLinksChangeNothing) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "deeper");
    writeFile(folder / "file", "text");
    const FileFingerprint before = readFileFingerprint(folder / "file");
    fs::rename(folder / "file", folder / "renamed");
    EXPECT_EQ(readFileFingerprint(folder / "renamed"), before);
    fs::rename(folder / "renamed", folder / "deeper/moved");
    EXPECT_EQ(readFileFingerprint(folder / "deeper/moved"), before);
    fs::create_hard_link(folder / "deeper/moved", folder / "second name");
    EXPECT_EQ(readFileFingerprint(folder / "second name"), before);
    fs::permissions(folder / "second name", fs::perms::none);
    EXPECT_EQ(readFileFingerprint(folder / "second name"), before);
}

TEST(FileFingerprint, AReplacementWithTheSameNameSizeAndDateIsAnotherFile) {
    const TemporaryFolder folder;
    for (const char* name : {"file", "copy"}) {
        writeFile(folder / name, "text");
        setModified(folder / name, {1'600'000'000, 123'456'789});
    }
    const FileFingerprint before = readFileFingerprint(folder / "file");
    fs::rename(folder / "copy", folder / "file");
    const FileFingerprint after = readFileFingerprint(folder / "file");
    EXPECT_EQ(after.contentModificationDate, before.contentModificationDate);
    EXPECT_EQ(after.volumeIdentifier, before.volumeIdentifier);
    EXPECT_NE(after.resourceIdentifier, before.resourceIdentifier);
}

// A file system that gives the inode number of a deleted file to the next one, within the resolution of its clock.
TEST(FileFingerprint, AThousandFilesMadeInPlaceOfEachOtherAreAThousandFiles) {
    const auto folder = folderWithHandles();
    if (!folder)
        GTEST_SKIP() << "no file system with file handles to write to; the identifiers of replaced files are untested";
    const fs::path file = *folder / "file";
    std::set<std::string> identifiers;
    std::set<std::string> identifiersWithoutBirthTime; // two files may be born at one tick of the file system's clock
    for (int i = 0; i < 1000; ++i) {
        writeFile(file, "text");
        setModified(file, {1'600'000'000, 0});
        const std::string identifier = readFileFingerprint(file).resourceIdentifier.value_or("absent");
        ASSERT_TRUE(identifier.starts_with("handle ")) << identifier;
        EXPECT_TRUE(identifiers.insert(identifier).second) << identifier;
        identifiersWithoutBirthTime.insert(identifier.substr(0, identifier.find(", born ")));
        fs::remove(file);
    }
    EXPECT_EQ(identifiers.size(), 1000U);
    EXPECT_EQ(identifiersWithoutBirthTime.size(), 1000U);
}

TEST(FileFingerprint, ALinkIsReadItselfAndNotWhatItLeadsTo) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "text");
    setModified(folder / "file", {1'600'000'000, 0});
    fs::create_symlink(folder / "file", folder / "link");
    fs::create_symlink(folder / "missing", folder / "broken");
    const FileFingerprint link = readFileFingerprint(folder / "link");
    EXPECT_NE(link.contentModificationDate, readFileFingerprint(folder / "file").contentModificationDate);
    EXPECT_NE(link.resourceIdentifier, readFileFingerprint(folder / "file").resourceIdentifier);
    EXPECT_TRUE(readFileFingerprint(folder / "broken").contentModificationDate);
    setModified(folder / "link", {1'500'000'000, 1});
    EXPECT_EQ(readFileFingerprint(folder / "link").contentModificationDate,
              SystemTime(std::chrono::nanoseconds(1'500'000'000'000'000'001)));
}

TEST(FileFingerprint, ASlashAtTheEndChangesNothing) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "folder");
    fs::create_directory_symlink(folder / "folder", folder / "link");
    setModified(folder / "link", {1'500'000'000, 0});
    for (const char* name : {"folder", "link"}) {
        ASSERT_TRUE(readFileFingerprint(folder / name).contentModificationDate);
        EXPECT_EQ(readFileFingerprint(folder / (std::string(name) + "/")), readFileFingerprint(folder / name)) << name;
        EXPECT_EQ(readFileFingerprint(folder / (std::string(name) + "//")), readFileFingerprint(folder / name));
    }
    EXPECT_TRUE(readFileFingerprint("/").contentModificationDate);
}

TEST(FileFingerprint, OfADescriptorIsThatOfItsFile) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "text");
    fs::create_symlink(folder / "file", folder / "link");
    const UniqueFd opened(open((folder / "file").c_str(), O_RDONLY | O_CLOEXEC));
    const UniqueFd pinned(open((folder / "file").c_str(), O_PATH | O_CLOEXEC));
    const UniqueFd link(open((folder / "link").c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    ASSERT_TRUE(opened && pinned && link);
    const FileFingerprint fingerprint = readFileFingerprint(folder / "file");
    EXPECT_EQ(readFileFingerprint(opened.get()), fingerprint);
    EXPECT_EQ(readFileFingerprint(pinned.get()), fingerprint);
    EXPECT_EQ(readFileFingerprint(link.get()), readFileFingerprint(folder / "link"));
    EXPECT_NE(readFileFingerprint(link.get()), fingerprint);

    fs::remove(folder / "file");
    writeFile(folder / "file", "text");
    EXPECT_EQ(readFileFingerprint(pinned.get()), fingerprint);
    EXPECT_NE(readFileFingerprint(folder / "file"), fingerprint);
}

TEST(FileFingerprint, LeavesNoDescriptorOpen) {
    const auto nextDescriptor = [] {
        const UniqueFd fd(open("/", O_PATH | O_CLOEXEC));
        return fd.get();
    };
    const int before = nextDescriptor();
    EXPECT_TRUE(readFileFingerprint("/").contentModificationDate);
    EXPECT_EQ(readFileFingerprint("/missing"), FileFingerprint());
    EXPECT_EQ(nextDescriptor(), before);
}

TEST(FileFingerprint, NeedsNoPermissionOnTheFile) {
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms(0755));
    fs::create_directory(folder / "closed");
    writeFile(folder / "file", "text");
    writeFile(folder / "closed/file", "text");
    fs::permissions(folder / "file", fs::perms::none);
    fs::permissions(folder / "closed", fs::perms::none);
    const auto expected = readFileFingerprint(folder / "file").resourceIdentifier;
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "still the same user";
        const bool closedIsUnknown = readFileFingerprint(folder / "closed/file") == FileFingerprint();
        return readFileFingerprint(folder / "file").resourceIdentifier == expected && closedIsUnknown ? "right"
                                                                                                      : "wrong";
    });
    fs::permissions(folder / "closed", fs::perms::owner_all);
    if (answer == "still the same user")
        GTEST_SKIP() << "may not become another user";
    EXPECT_EQ(answer, "right");
}

TEST(FileFingerprint, FallsBackToInodeAndBirthTimeWhereHandlesAreNotPermitted) {
    const auto folder = folderWithHandles();
    if (!folder)
        GTEST_SKIP() << "no file system with file handles to write to";
    writeFile(*folder / "file", "text");
    writeFile(*folder / "other", "text");
    const FileFingerprint permitted = readFileFingerprint(*folder / "file");
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!refuseHandles())
            return "not refused";
        const FileFingerprint refused = readFileFingerprint(*folder / "file");
        if (refused.contentModificationDate != permitted.contentModificationDate ||
            refused.volumeIdentifier != permitted.volumeIdentifier)
            return "the other fields are different";
        if (readFileFingerprint(*folder / "file") != refused)
            return "not the same twice";
        if (readFileFingerprint(*folder / "other").resourceIdentifier == refused.resourceIdentifier)
            return "two files are one";
        return refused.resourceIdentifier.value_or("absent");
    });
    if (answer == "not refused")
        GTEST_SKIP() << "may not filter system calls";
    EXPECT_TRUE(answer.starts_with("inode ")) << answer;
    EXPECT_NE(answer.find(", born "), answer.npos) << answer;
    EXPECT_TRUE(permitted.resourceIdentifier->ends_with(answer)) << *permitted.resourceIdentifier;
}

TEST(FileFingerprint, FallsBackToInodeAndBirthTimeOnAnOverlay) {
    const TemporaryFolder folder;
    for (const char* name : {"lower", "upper", "work", "point"})
        fs::create_directory(folder / name);
    writeFile(folder / "lower/below", "text");
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!mountPrivately("overlay", folder / "point",
                            "nfs_export=off,lowerdir=" + (folder / "lower").native() +
                                ",upperdir=" + (folder / "upper").native() + ",workdir=" + (folder / "work").native()))
            return "not mounted";
        writeFile(folder / "point/file", "text");
        const FileFingerprint above = readFileFingerprint(folder / "point/file");
        const FileFingerprint below = readFileFingerprint(folder / "point/below");
        const FileFingerprint point = readFileFingerprint(folder / "point");
        if (above.volumeIdentifier != point.volumeIdentifier || below.volumeIdentifier != point.volumeIdentifier)
            return "not on one volume";
        if (above.resourceIdentifier == below.resourceIdentifier)
            return "two files are one";
        if (readFileFingerprint(folder / "point/file") != above)
            return "not the same twice";
        return above.resourceIdentifier.value_or("absent");
    });
    if (answer == "not mounted")
        GTEST_SKIP() << "may not mount an overlay";
    EXPECT_TRUE(answer.starts_with("inode ")) << answer;
    EXPECT_NE(answer.find(", born "), answer.npos) << answer;
}

TEST(FileFingerprint, AnInodeNumberAloneIsNoIdentity) {
    const FileFingerprint fingerprint = readFileFingerprint("/proc/self/status"); // has neither handle nor birth time
    EXPECT_TRUE(fingerprint.contentModificationDate);
    EXPECT_EQ(fingerprint.resourceIdentifier, std::nullopt);
    EXPECT_TRUE(fingerprint.volumeIdentifier);
}

TEST(FileFingerprint, WhatIsOnOneVolumeHasOneVolumeIdentifier) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "deeper");
    writeFile(folder / "deeper/file", "text");
    const auto volume = readFileFingerprint(folder.path()).volumeIdentifier;
    EXPECT_EQ(readFileFingerprint(folder / "deeper").volumeIdentifier, volume);
    EXPECT_EQ(readFileFingerprint(folder / "deeper/file").volumeIdentifier, volume);
    EXPECT_NE(readFileFingerprint("/proc/self").volumeIdentifier, volume);
}

TEST(FileFingerprint, AFolderMountedOnceMoreIsAnotherVolumeSinceNothingMovesThere) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "folder");
    fs::create_directory(folder / "point");
    writeFile(folder / "folder/file", "text");
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!keepMountsPrivate() ||
            mount((folder / "folder").c_str(), (folder / "point").c_str(), nullptr, MS_BIND, nullptr) != 0)
            return "not mounted";
        if (rename((folder / "point/file").c_str(), (folder / "folder/moved").c_str()) == 0)
            return "moved";
        const FileFingerprint here = readFileFingerprint(folder / "folder/file");
        const FileFingerprint there = readFileFingerprint(folder / "point/file");
        return here.resourceIdentifier == there.resourceIdentifier && here.volumeIdentifier != there.volumeIdentifier
                   ? "right"
                   : "wrong";
    });
    if (answer == "not mounted")
        GTEST_SKIP() << "may not mount a file system";
    EXPECT_EQ(answer, "right");
}

TEST(FileFingerprint, WhatIsMountedInAFolderIsAnotherVolume) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "point");
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!mountPrivately("tmpfs", folder / "point", "size=1m"))
            return "not mounted";
        writeFile(folder / "point/file", "text");
        const auto inside = readFileFingerprint(folder / "point/file").volumeIdentifier;
        const bool isOfThePoint = inside == readFileFingerprint(folder / "point").volumeIdentifier;
        const bool isOfTheFolder = inside == readFileFingerprint(folder.path()).volumeIdentifier;
        return isOfThePoint && !isOfTheFolder ? "right" : "wrong";
    });
    if (answer == "not mounted")
        GTEST_SKIP() << "may not mount a file system";
    EXPECT_EQ(answer, "right");
}

} // namespace vantry
