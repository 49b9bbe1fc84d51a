#include "platform/UserSession.h"

#include "tests/platform/apple/OnDarwin.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

class AppleUserSession : public OnDarwin {
protected:
    const TemporaryFolder folder;
};

} // namespace

TEST_F(AppleUserSession, UsesTheTemporaryFolderOfTheUser) {
    const ScopedEnvironment variable("TMPDIR", "/some/folder");
    system.userTemporaryFolder = folder.path();
    EXPECT_EQ(userRuntimeFolder(), folder.path());
    EXPECT_EQ(temporaryFolder(), "/some/folder");
    for (const char* value : {"", "relative"}) {
        const ScopedEnvironment unusable("TMPDIR", value);
        EXPECT_EQ(temporaryFolder(), folder.path());
    }
}

TEST_F(AppleUserSession, RefusesAFolderThatIsNotPrivate) {
    fs::create_directory(folder / "open");
    fs::permissions(folder / "open", fs::perms(0710));
    fs::create_directory_symlink(folder.path(), folder / "link");
    writeFile(folder / "file", "");
    fs::permissions(folder / "file", fs::perms(0600));
    for (const auto& place : {folder / "open", folder / "link", folder / "file", fs::path("/proc/1")}) {
        system.userTemporaryFolder = place;
        if (geteuid() == 0 && place == "/proc/1")
            continue; // nothing is another user's
        const auto answer = userRuntimeFolder();
        ASSERT_FALSE(answer) << place;
        EXPECT_EQ(answer.error().kind, ErrorKind::permissionDenied) << place;
    }
    system.userTemporaryFolder = folder / "missing";
    EXPECT_EQ(userRuntimeFolder().error().kind, ErrorKind::notFound);
}

TEST_F(AppleUserSession, FailsWithoutAFolderOrWithOneOfTooLongAName) {
    const ScopedEnvironment variable("TMPDIR", nullptr);
    EXPECT_FALSE(userRuntimeFolder());
    system.userTemporaryFolder = "/" + std::string(PATH_MAX, 'n');
    EXPECT_FALSE(userRuntimeFolder());
    EXPECT_EQ(temporaryFolder(), "/tmp");
}

TEST_F(AppleUserSession, IsTheOnlyOne) {
    const ScopedEnvironment display("DISPLAY", ":0");
    EXPECT_EQ(graphicalSessionName(), "");
}

} // namespace vantry
