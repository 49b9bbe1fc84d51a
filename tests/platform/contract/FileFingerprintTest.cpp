#include "platform/FoundItem.h"

#include "base/UniqueFd.h"
#include "tests/platform/contract/FileFingerprintFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

} // namespace

TEST(FileFingerprint, OfAMissingPathIsEmpty) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    for (const fs::path& path : {folder / "missing", folder / "missing/deeper", folder / "file/below", fs::path(),
                                 folder / std::string(256, 'n')})
        EXPECT_EQ(readFileFingerprint(path), FileFingerprint()) << path;
}

TEST(FileFingerprint, OfABadDescriptorIsEmpty) { EXPECT_EQ(readFileFingerprint(-1), FileFingerprint()); }

TEST(FileFingerprint, OfAFileIsComplete) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "text");
    setModified(folder / "file", {1'600'000'000, 0});
    const FileFingerprint fingerprint = readFileFingerprint(folder / "file");
    EXPECT_EQ(fingerprint.contentModificationDate, SystemTime(std::chrono::seconds(1'600'000'000)));
    EXPECT_FALSE(fingerprint.resourceIdentifier.value_or("").empty());
    EXPECT_FALSE(fingerprint.volumeIdentifier.value_or("").empty());
}

TEST(FileFingerprint, OfAnUnchangedFileIsTheSame) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "text");
    EXPECT_EQ(readFileFingerprint(folder / "file"), readFileFingerprint(folder / "file"));
}

TEST(FileFingerprint, FilesHaveDifferentResourceIdentifiers) {
    const TemporaryFolder folder;
    writeFile(folder / "one", "");
    writeFile(folder / "other", "");
    EXPECT_NE(readFileFingerprint(folder / "one").resourceIdentifier,
              readFileFingerprint(folder / "other").resourceIdentifier);
}

TEST(FileFingerprint, ADateOutOfRangeIsClamped) {
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

TEST(FileFingerprint, DiffersForAReplacementWithTheSameNameSizeAndDate) {
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
    setModified(folder / "link", {1'500'000'000, 0});
    EXPECT_EQ(readFileFingerprint(folder / "link").contentModificationDate,
              SystemTime(std::chrono::seconds(1'500'000'000)));
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
    fs::create_directory(folder / "deeper");
    writeFile(folder / "file", "text");
    const UniqueFd opened(open((folder / "file").c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_TRUE(opened);
    EXPECT_EQ(readFileFingerprint(opened.get()), readFileFingerprint(folder / "file"));
    EXPECT_TRUE(readFileFingerprint(opened.get()).resourceIdentifier);
    fs::rename(folder / "file", folder / "deeper/moved");
    writeFile(folder / "file", "text");
    EXPECT_EQ(readFileFingerprint(opened.get()), readFileFingerprint(folder / "deeper/moved"));
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

TEST(FileFingerprint, FilesOnOneVolumeShareItsIdentifier) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "deeper");
    writeFile(folder / "deeper/file", "text");
    const auto volume = readFileFingerprint(folder.path()).volumeIdentifier;
    EXPECT_EQ(readFileFingerprint(folder / "deeper").volumeIdentifier, volume);
    EXPECT_EQ(readFileFingerprint(folder / "deeper/file").volumeIdentifier, volume);
    EXPECT_NE(readFileFingerprint("/proc/self").volumeIdentifier, volume);
}

TEST(FileFingerprint, AMountInAFolderIsAnotherVolume) {
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
