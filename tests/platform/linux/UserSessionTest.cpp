#include "platform/UserSession.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

constexpr const char* noSuchUser = "no other user";

/// The folder that `user` gets without a session's own.
fs::path fallbackFolder(uid_t user) { return "/tmp/ombrel-" + std::to_string(user); }

void makeFolder(const fs::path& folder, mode_t mode) {
    if (mkdir(folder.c_str(), mode) != 0 || chmod(folder.c_str(), mode) != 0)
        throw std::runtime_error("cannot make " + folder.native());
}

std::string modeText(const fs::path& folder) {
    struct stat facts = {};
    if (lstat(folder.c_str(), &facts) != 0)
        return "missing";
    std::string digits;
    for (const int shift : {6, 3, 0})
        digits += std::to_string((facts.st_mode >> shift) & 7U);
    return digits;
}

std::string answerText(const Result<fs::path>& answer) {
    return answer ? answer->native()
                  : (answer.error().kind == ErrorKind::permissionDenied ? "refused: " : "failed: ") +
                        answer.error().message;
}

/// Runs `block` as a user id that nobody else uses, so that only the test uses the folder named after the id.
std::string asUnknownUser(const std::function<std::string(uid_t)>& block) {
    const uid_t user = unknownUser();
    return inChildProcess([&]() -> std::string {
        if (!becomeUser(user))
            return noSuchUser;
        std::string answer;
        try {
            answer = block(user);
        } catch (const std::exception& failure) {
            answer = failure.what();
        }
        std::error_code ignored;
        fs::remove_all(fallbackFolder(user), ignored);
        return answer;
    });
}

} // namespace

// Where the C library reads a file for it.
TEST(HomeFolder, IsUnknownWhenTheUserDatabaseCannotBeRead) {
    EXPECT_EQ(inChildProcess([]() -> std::string {
                  const rlimit none = {0, 0};
                  unsetenv("HOME");
                  if (setrlimit(RLIMIT_NOFILE, &none) != 0)
                      return "no limit";
                  const auto home = homeFolder();
                  return home ? home->native() : home.error().message;
              }),
              "home folder: Too many open files");
}

TEST(UserRuntimeFolder, IsTheSessionsWhenThatIsPrivate) {
    const TemporaryFolder folder;
    const ScopedEnvironment variable("XDG_RUNTIME_DIR", folder.path().c_str());
    EXPECT_EQ(userRuntimeFolder(), folder.path());
}

TEST(UserRuntimeFolder, IsMadeInTheTemporaryFolderWithoutOneOfTheSession) {
    const struct {
        const char* name;
        std::function<void(const fs::path& folder)> prepare; ///< sets $XDG_RUNTIME_DIR to what cannot be used
    } cases[] = {
        {"unset", [](const fs::path&) { unsetenv("XDG_RUNTIME_DIR"); }},
        {"empty", [](const fs::path&) { setenv("XDG_RUNTIME_DIR", "", 1); }},
        {"relative",
         [](const fs::path& folder) {
             makeFolder(folder / "run", 0700);
             fs::current_path(folder); // the child's alone
             setenv("XDG_RUNTIME_DIR", "run", 1);
         }},
        {"missing", [](const fs::path& folder) { setenv("XDG_RUNTIME_DIR", (folder / "none").c_str(), 1); }},
        {"open to the group",
         [](const fs::path& folder) {
             makeFolder(folder / "run", 0710);
             setenv("XDG_RUNTIME_DIR", (folder / "run").c_str(), 1);
         }},
        {"open to all",
         [](const fs::path& folder) {
             makeFolder(folder / "run", 0701);
             setenv("XDG_RUNTIME_DIR", (folder / "run").c_str(), 1);
         }},
        {"a link to a private folder",
         [](const fs::path& folder) {
             makeFolder(folder / "run", 0700);
             fs::create_directory_symlink(folder / "run", folder / "link");
             setenv("XDG_RUNTIME_DIR", (folder / "link").c_str(), 1);
         }},
        {"a file",
         [](const fs::path& folder) {
             writeFile(folder / "run", "");
             chmod((folder / "run").c_str(), 0600);
             setenv("XDG_RUNTIME_DIR", (folder / "run").c_str(), 1);
         }},
        {"somebody else's", [](const fs::path&) { setenv("XDG_RUNTIME_DIR", "/", 1); }},
    };
    for (const auto& [name, prepare] : cases) {
        const std::string answer = asUnknownUser([&prepare](uid_t user) {
            const TemporaryFolder folder;
            prepare(folder.path());
            const std::string given = answerText(userRuntimeFolder());
            const std::string again = answerText(userRuntimeFolder());
            return given == fallbackFolder(user).native() && again == given ? "made " + modeText(given)
                                                                            : given + " " + again;
        });
        if (answer == noSuchUser)
            GTEST_SKIP() << answer;
        EXPECT_EQ(answer, "made 700") << name;
    }
}

TEST(UserRuntimeFolder, IsPrivateWhateverTheUmask) {
    const std::string answer = asUnknownUser([](uid_t) {
        umask(0);
        unsetenv("XDG_RUNTIME_DIR");
        const auto folder = userRuntimeFolder();
        return folder ? modeText(*folder) : answerText(folder);
    });
    if (answer == noSuchUser)
        GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "700");
}

TEST(UserRuntimeFolder, FailsWhenThePlaceInTheTemporaryFolderIsNotPrivate) {
    const struct {
        const char* name;
        std::function<void(const fs::path& place)> prepare;
    } cases[] = {
        {"open to the group", [](const fs::path& place) { makeFolder(place, 0750); }},
        {"open to all", [](const fs::path& place) { makeFolder(place, 0705); }},
        {"a file", [](const fs::path& place) { writeFile(place, ""); }},
        {"a link to a private folder",
         [](const fs::path& place) {
             const fs::path target = place.native() + "-target";
             fs::remove_all(target);
             makeFolder(target, 0700);
             fs::create_directory_symlink(target, place);
         }},
        {"a link to nothing", [](const fs::path& place) { fs::create_symlink("/no/such/place", place); }},
    };
    for (const auto& [name, prepare] : cases) {
        const std::string answer = asUnknownUser([&prepare](uid_t user) {
            unsetenv("XDG_RUNTIME_DIR");
            const fs::path place = fallbackFolder(user);
            prepare(place);
            const std::string given = answerText(userRuntimeFolder());
            fs::remove_all(place.native() + "-target");
            return given == "refused: " + place.native() + ": not a private folder" ? "refused" : given;
        });
        if (answer == noSuchUser)
            GTEST_SKIP() << answer;
        EXPECT_EQ(answer, "refused") << name;
    }
}

TEST(UserRuntimeFolder, OfAnotherOwnerIsNeverUsed) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make a folder of another owner";
    // Both folders are private but belong to root.
    const TemporaryFolder session;
    const uid_t user = unknownUser();
    const fs::path place = fallbackFolder(user);
    makeFolder(place, 0700);
    const std::string answer = inChildProcess([&] {
        setenv("XDG_RUNTIME_DIR", session.path().c_str(), 1);
        return becomeUser(user) ? answerText(userRuntimeFolder()) : std::string(noSuchUser);
    });
    fs::remove(place);
    if (answer == noSuchUser)
        GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "refused: " + place.native() + ": not a private folder");
}

TEST(GraphicalSessionName, IsTheDisplayWithoutItsScreen) {
    const struct {
        const char* display;
        const char* waylandDisplay;
        const char* name;
    } cases[] = {
        {":0", nullptr, ":0"},
        {":0.0", nullptr, ":0"},
        {":0.1", nullptr, ":0"},
        {":12.3", nullptr, ":12"},
        {"unix:0.0", nullptr, "unix:0"},
        {"host.example.org:10", nullptr, "host.example.org:10"},
        {"host.example.org:10.0", nullptr, "host.example.org:10"},
        {"192.168.0.1:0.0", nullptr, "192.168.0.1:0"},
        {"::1:0.0", nullptr, "::1:0"},
        {"odd.name", nullptr, "odd"},
        {":0", "wayland-1", ":0"},
        {"", "wayland-1", "wayland-1"},
        {nullptr, "wayland-1", "wayland-1"},
        {nullptr, "wayland.0", "wayland.0"},
        {nullptr, nullptr, ""},
        {"", "", ""},
    };
    for (const auto& [display, waylandDisplay, name] : cases) {
        const ScopedEnvironment x11("DISPLAY", display);
        const ScopedEnvironment wayland("WAYLAND_DISPLAY", waylandDisplay);
        EXPECT_EQ(graphicalSessionName(), name) << (display ? display : "unset");
    }
}

} // namespace vantry
