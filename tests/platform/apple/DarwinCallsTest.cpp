// What the stand-in for Darwin promises by Apple's manual and nothing else here relies on.

#include "base/UniqueFd.h"
#include "tests/platform/apple/OnDarwin.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string>
#include <sys/attr.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

/// "folder/file", "link" to the folder, and "folder/link" to the file.
class DarwinCalls : public OnDarwin {
protected:
    DarwinCalls() {
        fs::create_directory(root / "folder");
        writeFile(root / "folder/file", "text");
        fs::create_directory_symlink("folder", root / "link");
        fs::create_symlink("file", root / "folder/link");
    }

    [[nodiscard]] int errorOfOpening(const char* name, int flags) const {
        const UniqueFd fd(darwinOpen((root / name).c_str(), flags | O_CLOEXEC));
        return fd ? 0 : errno;
    }

    const TemporaryFolder temporary;
    const fs::path root = fs::canonical(temporary.path());
};

} // namespace

TEST_F(DarwinCalls, OpenForEventsAloneRefusesLinksAndNeedsNoRight) {
    fs::permissions(root / "folder/file", fs::perms::none);
    EXPECT_EQ(errorOfOpening("folder/file", O_EVTONLY | O_NOFOLLOW | O_NONBLOCK), 0);
    EXPECT_EQ(errorOfOpening("folder/link", O_EVTONLY | O_NOFOLLOW), ELOOP);
    EXPECT_EQ(errorOfOpening("folder/link", O_EVTONLY), 0);
}

TEST_F(DarwinCalls, OpenFollowsNoLinkAnywhereWhenItIsAskedNotTo) {
    EXPECT_EQ(errorOfOpening("link/file", O_RDONLY | O_NOFOLLOW), 0);
    EXPECT_EQ(errorOfOpening("link/file", O_RDONLY | O_NOFOLLOW_ANY), ELOOP);
    EXPECT_EQ(errorOfOpening("folder/link", O_RDONLY | O_NOFOLLOW_ANY), ELOOP);
    EXPECT_EQ(errorOfOpening("folder/file", O_RDONLY | O_NOFOLLOW_ANY), 0);
}

TEST_F(DarwinCalls, ADescriptorTellsItsPath) {
    const UniqueFd fd(darwinOpen((root / "link/link").c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, MAXPATHLEN> path{};
    EXPECT_EQ(darwinFcntl(fd.get(), F_GETPATH, path.data()), 0);
    EXPECT_EQ(path.data(), root / "folder/file");
    EXPECT_EQ(darwinFcntl(-1, F_GETPATH, path.data()), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST_F(DarwinCalls, ARenamingCanBeKeptFromReplacing) {
    writeFile(root / "other", "");
    const fs::path file = root / "folder/file";
    EXPECT_EQ(renameatx_np(AT_FDCWD, file.c_str(), AT_FDCWD, (root / "other").c_str(), RENAME_EXCL), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(renameatx_np(AT_FDCWD, file.c_str(), AT_FDCWD, (root / "new").c_str(), RENAME_EXCL), 0);
    EXPECT_EQ(renameatx_np(AT_FDCWD, (root / "new").c_str(), AT_FDCWD, (root / "other").c_str(), 0), 0);
    EXPECT_EQ(readFile(root / "other"), "text");
    writeFile(root / "another", "other text");
    EXPECT_EQ(renameatx_np(AT_FDCWD, (root / "another").c_str(), AT_FDCWD, (root / "other").c_str(), RENAME_SWAP), 0);
    EXPECT_EQ(readFile(root / "another"), "text");
    EXPECT_EQ(readFile(root / "other"), "other text");
}

TEST_F(DarwinCalls, AFolderWithoutItsContentsIsFetchedWhenItIsOpened) {
    system.setFlags(root / "folder", SF_DATALESS);
    EXPECT_EQ(errorOfOpening("folder", O_RDONLY), 0);
    EXPECT_EQ(system.fetched, std::vector<std::string>{root / "folder"});
    EXPECT_EQ(errorOfOpening("folder", O_EVTONLY), 0);
    setiopolicy_np(IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES, IOPOL_SCOPE_THREAD, IOPOL_MATERIALIZE_DATALESS_FILES_OFF);
    EXPECT_EQ(errorOfOpening("folder", O_RDONLY), EDEADLK);
    EXPECT_EQ(system.fetched.size(), 1U);
}

TEST_F(DarwinCalls, AListingNeedsARecordsRoomAndTheAttributesThatTellRecordsApart) {
    const UniqueFd fd(darwinOpen((root / "folder").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    attrlist wanted = {};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.commonattr = ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_NAME;
    alignas(8) std::array<char, 4096> buffer{};
    EXPECT_EQ(getattrlistbulk(fd.get(), &wanted, buffer.data(), 16, 0), -1);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(getattrlistbulk(fd.get(), &wanted, buffer.data(), 56, 0), 1) << "the first, as if there were no other";
    EXPECT_EQ(getattrlistbulk(fd.get(), &wanted, buffer.data(), buffer.size(), 0), 1);
    EXPECT_EQ(getattrlistbulk(fd.get(), &wanted, buffer.data(), buffer.size(), 0), 0);
    wanted.commonattr = ATTR_CMN_NAME;
    EXPECT_EQ(getattrlistbulk(fd.get(), &wanted, buffer.data(), buffer.size(), 0), -1);
    EXPECT_EQ(errno, EINVAL);
}

} // namespace vantry
