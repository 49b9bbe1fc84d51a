#include "platform/LoginItem.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <array>
#include <gtest/gtest.h>

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

TEST(LoginItem, TheRunningApplicationIsThisExecutable) {
    const auto path = runningApplicationPath();
    ASSERT_TRUE(path);
    EXPECT_TRUE(std::filesystem::equivalent(*path, "/proc/self/exe"));
}

} // namespace
} // namespace vantry
