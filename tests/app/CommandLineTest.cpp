#include "app/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Arguments = std::vector<std::string>;

TEST(CommandLine, TheFirstArgumentThatNamesAModeDecides) {
    struct Case {
        Arguments arguments;
        LaunchMode mode;
    };
    const std::vector<Case> cases{
        {{}, LaunchMode::userInterface},
        {{"--help"}, LaunchMode::help},
        {{"--version"}, LaunchMode::version},
        {{"--status"}, LaunchMode::status},
        {{"--status=json"}, LaunchMode::statusJson},
        {{"--show-cleanup"}, LaunchMode::userInterface},
        {{"--show-cleanup", "--status"}, LaunchMode::status},
        {{"--unknown", "file", "--version"}, LaunchMode::version},
        {{"--version", "--help"}, LaunchMode::version},
        {{"--status=json", "--status"}, LaunchMode::statusJson},
        {{"--status", "json"}, LaunchMode::status},
        {{"--report"}, LaunchMode::report},
        {{"--running", "com.example.app", "--report=json"}, LaunchMode::reportJson},
    };
    for (const auto& [arguments, mode] : cases)
        EXPECT_EQ(launchMode(arguments), mode) << testing::PrintToString(arguments);
}

TEST(CommandLine, UnknownArgumentsAreIgnored) {
    for (const char* argument :
         {"", "-h", "-help", "help", "--Help", "--HELP", "--help ", "--helps", "--version=1", "-v",
          "--status=", "--status=JSON", "--status=xml", "--statusjson", "--", "--directory-metrics", "--Show-Cleanup"})
        EXPECT_EQ(launchMode(Arguments{argument}), LaunchMode::userInterface) << argument;
}

TEST(CommandLine, EveryRunningApplicationIsNamedByTheArgumentAfterItsOption) {
    EXPECT_THAT(runningBundleIdentifiers(Arguments{}), ElementsAre());
    EXPECT_THAT(runningBundleIdentifiers(Arguments{"--running"}), ElementsAre());
    EXPECT_THAT(runningBundleIdentifiers(Arguments{"--running", "a", "--report", "--running", "b", "c"}),
                ElementsAre("a", "b"));
    EXPECT_THAT(runningBundleIdentifiers(Arguments{"--running", "--running", "b"}), ElementsAre("--running"));
}

TEST(CommandLine, ASecondStartAsksForThePopoverUnlessItRestoresASession) {
    EXPECT_EQ(requestOfSecondStart(Arguments{}), InstanceRequest::showPopover);
    EXPECT_EQ(requestOfSecondStart(Arguments{"--show-cleanup"}), InstanceRequest::showCleanup);
    EXPECT_EQ(requestOfSecondStart(Arguments{"-session", "10a2b_3"}), std::nullopt);
    EXPECT_EQ(requestOfSecondStart(Arguments{"--session"}), InstanceRequest::showPopover);
}

TEST(CommandLine, TheHelpNamesEveryOption) {
    for (const char* option : {"--show-cleanup", "--status", "--status=json", "--report", "--report=json",
                               "--running ID", "--help", "--version"})
        EXPECT_THAT(helpText(), HasSubstr(std::string("\n  ") + option + " "));
    EXPECT_TRUE(helpText().starts_with("Usage: ombrel [OPTION]\n"));
    EXPECT_TRUE(helpText().ends_with("\n"));
}

TEST(CommandLine, TheVersionIsTheBuilds) { EXPECT_EQ(versionText(), "Ombrel " OMBREL_VERSION "\n"); }

} // namespace

} // namespace vantry
