#include "platform/UserSession.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <string>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

} // namespace

TEST(HomeFolder, IsWhatTheEnvironmentSays) {
    const TemporaryFolder home;
    const ScopedEnvironment variable("HOME", home.path().c_str());
    EXPECT_EQ(homeFolder(), home.path());
}

TEST(HomeFolder, NeedNotExist) {
    const ScopedEnvironment variable("HOME", "/no/such/folder");
    EXPECT_EQ(homeFolder(), fs::path("/no/such/folder"));
}

TEST(HomeFolder, IsTheUserDatabasesWhenTheEnvironmentNamesNoAbsoluteOne) {
    const passwd* entry = getpwuid(getuid());
    if (!entry)
        GTEST_SKIP() << "this user is not in the user database";
    const fs::path expected = entry->pw_dir;
    for (const char* value : {static_cast<const char*>(nullptr), "", "relative", "./here", "~"}) {
        const ScopedEnvironment variable("HOME", value);
        EXPECT_EQ(homeFolder(), expected) << (value ? value : "unset");
    }
}

TEST(HomeFolder, OfAnUnknownUserIsNotFound) {
    constexpr const char* noSuchUser = "no other user";
    const std::string answer = inChildProcess([]() -> std::string {
        if (!becomeUser(unknownUser()))
            return noSuchUser;
        unsetenv("HOME");
        const auto home = homeFolder();
        if (home)
            return home->native();
        return home.error().kind == ErrorKind::notFound ? home.error().message.substr(0, 13) : "another kind";
    });
    if (answer == noSuchUser)
        GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "home folder: ");
}

TEST(TemporaryFolderOfTheUser, IsTheOneOfTheEnvironmentWhenItIsAbsolute) {
    for (const auto& [variable, folder] :
         {std::pair("/some/folder", "/some/folder"), {"relative", "/tmp"}, {"", "/tmp"}}) {
        const ScopedEnvironment environment("TMPDIR", variable);
        EXPECT_EQ(temporaryFolder(), folder);
    }
    const ScopedEnvironment environment("TMPDIR", nullptr);
    EXPECT_EQ(temporaryFolder(), "/tmp");
}

} // namespace vantry
