#include "platform/LoginItem.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vantry {
namespace {

std::string execLine(const std::string& entry) {
    const auto start = entry.find("\nExec=") + 6;
    return entry.substr(start, entry.find('\n', start) - start);
}

TEST(LoginItem, TheAutostartEntryStandsInTheConfigurationFolder) {
    const ScopedEnvironment home("HOME", "/home/someone");
    struct Case {
        const char* configuration;
        const char* expected;
    };
    for (const auto& [configuration, expected] :
         std::array<Case, 4>{{{"/settings", "/settings/autostart/id.desktop"},
                              {nullptr, "/home/someone/.config/autostart/id.desktop"},
                              {"", "/home/someone/.config/autostart/id.desktop"},
                              {"relative/folder", "/home/someone/.config/autostart/id.desktop"}}}) {
        const ScopedEnvironment configured("XDG_CONFIG_HOME", configuration);
        EXPECT_EQ(autostartFile("id"), std::filesystem::path(expected));
    }
}

TEST(LoginItem, UnusualPathsAreQuotedAsTheDesktopEntrySpecificationSays) {
    struct Case {
        const char* path;
        const char* exec;
    };
    for (const auto& [path, exec] : std::array<Case, 7>{{
             {"/usr/bin/ombrel", R"("/usr/bin/ombrel")"},
             {"/opt/My Apps/ombrel", R"("/opt/My Apps/ombrel")"},
             {R"(/a"b)", R"("/a\\"b")"},
             {R"(/a\b)", R"("/a\\\\b")"},
             {"/a$b`c", R"("/a\\$b\\`c")"},
             {"/100%/x", R"("/100%%/x")"},
             {"/R&D <é>/o'x", R"("/R&D <é>/o'x")"},
         }}) {
        const auto entry = autostartEntry("id", path);
        ASSERT_TRUE(entry) << path;
        EXPECT_EQ(execLine(*entry), exec);
    }
}

TEST(LoginItem, APathThatADesktopEntryCannotHoldIsRefused) {
    for (const char* path : {"/a\nb", "/a\tb", "/\xff", "/a\x7f"}) {
        const auto entry = autostartEntry("id", path);
        ASSERT_FALSE(entry) << path;
        EXPECT_EQ(entry.error().kind, ErrorKind::invalid);
    }
}

TEST(LoginItem, TheValidatorOfDesktopEntriesHasNothingToSay) {
    if (std::system("command -v desktop-file-validate >/dev/null") != 0)
        GTEST_SKIP() << "SKIPPED: desktop-file-validate is not installed";
    const TemporaryFolder folder;
    const auto file = folder / "app.ombrel.Ombrel.desktop";
    for (const char* path : {"/usr/bin/ombrel", R"(/opt/My "A\pp" & <é> $`100%/ombrel)"}) {
        writeFile(file, *autostartEntry("app.ombrel.Ombrel", path));
        EXPECT_EQ(std::system(("test -z \"$(desktop-file-validate '" + file.native() + "' 2>&1)\"").c_str()), 0)
            << path;
    }
}

TEST(LoginItem, TheDesktopHonoursAnEntryThatNothingSwitchesOff) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "bin");
    std::filesystem::create_directory(folder / "folder");
    writeFile(folder / "bin/program", "");
    std::filesystem::permissions(folder / "bin/program", std::filesystem::perms(0755));
    writeFile(folder / "bin/text", "");
    const ScopedEnvironment path("PATH", (folder.path().native() + ":" + (folder / "bin").native()).c_str());
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    struct Case {
        std::string keys;
        bool honoured;
    };
    const std::vector<Case> cases{
        {"", true},
        {"Hidden=false\nX-GNOME-Autostart-enabled=true\n", true},
        {"Hidden=true\n", false},
        {" Hidden = true \r\n", false},
        {"#Hidden=true\n", true},
        {"X-GNOME-Autostart-enabled=false\n", false},
        {"X-MATE-Autostart-enabled=false\n", false},
        {"OnlyShowIn=KDE;GNOME;\n", true},
        {"OnlyShowIn=KDE;XFCE;\n", false},
        {"OnlyShowIn=\n", false},
        {"NotShowIn=KDE\n", true},
        {"NotShowIn=KDE;ubuntu\n", false},
        {"TryExec=program\n", true},
        {"TryExec=text\n", false},
        {"TryExec=folder\n", false},
        {"TryExec=missing\n", false},
        {"TryExec=" + (folder / "bin/program").native() + "\n", true},
        {"TryExec=" + (folder / "program").native() + "\n", false},
        {"[Desktop Action Other]\nHidden=true\n", true},
    };
    for (const auto& [keys, honoured] : cases)
        EXPECT_EQ(autostartEntryIsHonoured(*autostartEntry("id", "/usr/bin/ombrel") + keys), honoured) << keys;
    for (const char* entry :
         {"", "[Desktop Entry]\nType=Application\n", "[Desktop Entry]\nExec=\n", "Exec=/usr/bin/x\n"})
        EXPECT_FALSE(autostartEntryIsHonoured(entry)) << entry;

    const ScopedEnvironment none("XDG_CURRENT_DESKTOP", nullptr);
    EXPECT_FALSE(autostartEntryIsHonoured("[Desktop Entry]\nExec=x\nOnlyShowIn=GNOME;\n"));
    EXPECT_TRUE(autostartEntryIsHonoured("[Desktop Entry]\nExec=x\nNotShowIn=GNOME;\n"));
    EXPECT_FALSE(autostartEntryIsHonoured("[Desktop Entry]\nExec=x\nOnlyShowIn=\n"));
    EXPECT_TRUE(autostartEntryIsHonoured("[Desktop Entry]\nExec=x\nNotShowIn=;\n"));
    EXPECT_EQ(inChildProcess([&]() -> std::string {
                  std::filesystem::current_path(folder / "bin"); // the child's alone
                  const ScopedEnvironment emptyPart("PATH", "::");
                  return autostartEntryIsHonoured("[Desktop Entry]\nExec=x\nTryExec=program\n") ? "honoured" : "not";
              }),
              "not")
        << "an empty part is no folder";
    const ScopedEnvironment noPath("PATH", nullptr);
    EXPECT_FALSE(autostartEntryIsHonoured("[Desktop Entry]\nExec=x\nTryExec=program\n"));
    EXPECT_TRUE(autostartEntryIsHonoured("[Desktop Entry]\nExec=x\nTryExec=/bin/sh\n"));
}

TEST(LoginItem, AnEntryStartsTheApplicationThatItsExecNames) {
    for (const char* path : {"/usr/bin/ombrel", R"(/opt/My "A\pp" & <é> $`100%/ombrel)"}) {
        EXPECT_TRUE(autostartEntryStarts(*autostartEntry("id", path), path));
        EXPECT_FALSE(autostartEntryStarts(*autostartEntry("id", path), "/usr/local/bin/ombrel"));
    }
    EXPECT_TRUE(autostartEntryStarts("[Desktop Entry]\nExec=/usr/bin/ombrel\n", "/usr/bin/ombrel"));
    EXPECT_FALSE(autostartEntryStarts("[Desktop Entry]\nExec=/usr/bin/ombrel --status\n", "/usr/bin/ombrel"));
    EXPECT_FALSE(autostartEntryStarts("[Desktop Entry]\n", "/usr/bin/ombrel"));
}

TEST(LoginItem, TheRunningApplicationIsThisExecutable) {
    const auto path = runningApplicationPath();
    ASSERT_TRUE(path);
    EXPECT_TRUE(std::filesystem::equivalent(*path, "/proc/self/exe"));
}

} // namespace
// A copy of this program runs this test once more, and takes itself away.
TEST(LoginItem, AnApplicationThatWasRemovedOrReplacedSinceItsStartStandsWhereItStood) {
    constexpr const char* copyOfTest = "OMBREL_TEST_COPY";
    if (const char* copy = std::getenv(copyOfTest)) {
        ASSERT_EQ(runningApplicationPath().value(), copy);
        ASSERT_TRUE(std::filesystem::remove(copy));
        EXPECT_EQ(runningApplicationPath().value(), copy);
        writeFile(copy, "an update");
        EXPECT_EQ(runningApplicationPath().value(), copy);
        return;
    }
    // The kernel appends " (deleted)" to the path of a program that was removed, whatever its name.
    for (const char* name : {"ombrel", "ombrel (deleted)"}) {
        const TemporaryFolder folder;
        const auto copy = folder / name;
        std::filesystem::copy_file("/proc/self/exe", copy);
        const pid_t child = fork();
        if (child == 0) {
            setenv(copyOfTest, copy.c_str(), 1);
            execl(copy.c_str(), copy.c_str(), "--gtest_filter=LoginItem.AnApplicationThatWasRemoved*", nullptr);
            _exit(127);
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0) << name;
    }
}

} // namespace vantry
