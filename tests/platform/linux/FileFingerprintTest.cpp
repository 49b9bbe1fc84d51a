#include "platform/FoundItem.h"

#include "base/UniqueFd.h"
#include "tests/platform/contract/FileFingerprintFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <sys/mount.h>
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

std::int64_t nanosecondsOf(const struct timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

} // namespace

TEST(FileFingerprint, OfAPathDescriptorIsThatOfItsItemEvenIfDeleted) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "text");
    fs::create_symlink(folder / "file", folder / "link");
    const UniqueFd pinned(open((folder / "file").c_str(), O_PATH | O_CLOEXEC));
    const UniqueFd link(open((folder / "link").c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    ASSERT_TRUE(pinned && link);
    const FileFingerprint fingerprint = readFileFingerprint(folder / "file");
    EXPECT_EQ(readFileFingerprint(pinned.get()), fingerprint);
    EXPECT_EQ(readFileFingerprint(link.get()), readFileFingerprint(folder / "link"));
    EXPECT_NE(readFileFingerprint(link.get()), fingerprint);

    fs::remove(folder / "file");
    writeFile(folder / "file", "text");
    EXPECT_EQ(readFileFingerprint(pinned.get()), fingerprint);
    EXPECT_NE(readFileFingerprint(folder / "file"), fingerprint);
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

// A file system that gives the inode number of a deleted file to the next one, within the resolution of its clock.
TEST(FileFingerprint, DiffersForAThousandFilesThatReplaceEachOther) {
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

TEST(FileFingerprint, FallsBackToInodeAndBirthTimeWhereHandlesAreNotPermitted) {
    const auto folder = folderWithHandles();
    if (!folder)
        GTEST_SKIP() << "no file system with file handles to write to";
    writeFile(*folder / "file", "text");
    writeFile(*folder / "other", "text");
    const FileFingerprint permitted = readFileFingerprint(*folder / "file");
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!refuseCall(SYS_name_to_handle_at, EPERM))
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

TEST(FileFingerprint, AnInodeNumberAloneIsNotAnIdentity) {
    const FileFingerprint fingerprint = readFileFingerprint("/proc/self/status"); // has neither handle nor birth time
    EXPECT_TRUE(fingerprint.contentModificationDate);
    EXPECT_EQ(fingerprint.resourceIdentifier, std::nullopt);
    EXPECT_TRUE(fingerprint.volumeIdentifier);
}

TEST(FileFingerprint, ASecondMountOfAFolderIsAnotherVolume) {
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

} // namespace vantry
