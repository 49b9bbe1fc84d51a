#include "app/CommandLine.h"
#include "cleanup/scan/FilesystemWorker.h"

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

/// The process entry with steps that write down that they were taken.
class ProcessEntry : public testing::Test {
protected:
    int run(const Arguments& arguments) {
        const EntrySteps steps{.runFilesystemWorkerIfRequested =
                                   [this](std::span<const std::string> given) {
                                       taken.push_back("worker? " +
                                                       testing::PrintToString(Arguments(given.begin(), given.end())));
                                       return isWorker;
                                   },
                               .runInTerminal =
                                   [this](LaunchMode mode, std::span<const std::string> given) {
                                       terminalArguments.assign(given.begin(), given.end());
                                       taken.push_back("terminal? " + std::to_string(static_cast<int>(mode)));
                                       return terminalStatus;
                                   },
                               .runUserInterface =
                                   [this](const Arguments& given) {
                                       taken.push_back("interface " + testing::PrintToString(given));
                                       return interfaceStatus;
                                   }};
        return runEntry(arguments, steps);
    }

    bool isWorker = false;
    std::optional<int> terminalStatus;
    int interfaceStatus = 0;
    Arguments taken;
    Arguments terminalArguments;
};

TEST_F(ProcessEntry, AsksForAWorkersJobFirstThenForTheTerminalThenRunsTheInterface) {
    interfaceStatus = 3;
    EXPECT_EQ(run({"--show-cleanup", "x"}), 3);
    EXPECT_THAT(taken, ElementsAre("worker? { \"--show-cleanup\", \"x\" }", "terminal? 0",
                                   "interface { \"--show-cleanup\", \"x\" }"));
}

TEST_F(ProcessEntry, AWorkerEndsWithZeroAndReachesNothingElse) {
    isWorker = true;
    terminalStatus = 1;
    interfaceStatus = 1;
    for (const Arguments& arguments : {Arguments{"--directory-metrics-worker", "/tmp"}, Arguments{"--help"}}) {
        taken.clear();
        EXPECT_EQ(run(arguments), 0);
        EXPECT_THAT(taken, ElementsAre("worker? " + testing::PrintToString(arguments)));
    }
}

TEST_F(ProcessEntry, AModeOfTheTerminalEndsWithItsStatus) {
    for (const int status : {0, 1}) {
        taken.clear();
        terminalStatus = status;
        EXPECT_EQ(run({"--status"}), status);
        EXPECT_THAT(terminalArguments, ElementsAre("--status"));
        EXPECT_THAT(taken, ElementsAre("worker? { \"--status\" }",
                                       "terminal? " + std::to_string(static_cast<int>(LaunchMode::status))));
    }
}

// Starts whose job cannot be done: one that can makes its process give up the right to change files.
TEST(ProcessEntryOfAWorker, NeverReachesTheInterface) {
    for (const Arguments& arguments : {Arguments{"--directory-metrics-worker"}, Arguments{"--shallow-children-worker"},
                                       Arguments{"--directory-metrics-worker", "--show-cleanup"},
                                       Arguments{"--shallow-children-worker", "--help"}}) {
        int reached = 0;
        EXPECT_EQ(runEntry(arguments, {.runFilesystemWorkerIfRequested = CleanupScanner::runFilesystemWorkerIfRequested,
                                       .runInTerminal = [&reached](LaunchMode, auto) -> std::optional<int> {
                                           ++reached;
                                           return std::nullopt;
                                       },
                                       .runUserInterface = [&reached](const Arguments&) { return ++reached; }}),
                  0);
        EXPECT_EQ(reached, 0) << testing::PrintToString(arguments);
    }
}

} // namespace

} // namespace vantry
