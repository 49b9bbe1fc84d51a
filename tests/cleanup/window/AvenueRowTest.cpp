#include "cleanup/window/AvenueRow.h"
#include "tests/support/Candidates.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry {

namespace {

using enum CleanupCategory;
using enum CleanupScanState;
using Amount = CleanupByteAmount;

CleanupAvenue avenueOf(std::set<CleanupCategory> categories, CleanupAvenue::Mode mode = CleanupAvenue::Mode::scanned) {
    return {.area = CleanupArea::quickWins,
            .title = "Title",
            .detail = "Detail",
            .symbolName = "symbol",
            .mode = mode,
            .categories = std::move(categories),
            .action = std::nullopt};
}

// How amounts are added is tested in UsageMeasurementTest.cpp.
TEST(CombinedOccupiedAmount, AddsTheCategoriesAndTreatsThoseThatWereNotMeasuredAsUnknown) {
    const CleanupCategoryMetric five{.occupied = Amount::exact(5)};
    const CleanupCategoryMetric seven{.occupied = Amount::atLeast(7)};
    EXPECT_EQ(combinedOccupiedAmount({log, orphan}, {{log, five}, {orphan, seven}}), Amount::atLeast(12));
    EXPECT_EQ(combinedOccupiedAmount({log, orphan}, {{log, five}}), Amount::atLeast(5));
    EXPECT_EQ(combinedOccupiedAmount({log}, {{orphan, five}}), Amount::unavailable());
}

TEST(UsageText, ShowsHowMuchIsKnown) {
    const auto unknown = Amount::unavailable();
    struct Case {
        Amount logs;
        Amount crashReports;
        bool stoppedEarly;
        const char* text;
    };
    for (const auto& [logs, crashReports, stoppedEarly, text] :
         {Case{Amount::exact(0), Amount::exact(0), false, "0 B used here"},
          Case{Amount::exact(2000), Amount::exact(0), false, "2 KB used here"},
          Case{Amount::exact(1), Amount::exact(0), false, "1 byte used here"},
          Case{Amount::exact(2000), Amount::exact(0), true, "2 KB used here · scan stopped early"},
          Case{Amount::exact(0), Amount::exact(0), true, "0 B used here · scan stopped early"},
          Case{Amount::atLeast(2000), Amount::exact(0), false, "At least 2 KB seen · full total unavailable"},
          Case{Amount::atLeast(2000), Amount::exact(0), true, "At least 2 KB seen · scan stopped early"},
          Case{Amount::atLeast(0), Amount::exact(0), false, "At least 0 B seen · full total unavailable"},
          Case{Amount::exact(2000), unknown, false, "At least 2 KB seen · full total unavailable"},
          Case{Amount::exact(2000), unknown, true, "At least 2 KB seen · scan stopped early"},
          Case{unknown, Amount::exact(0), false, "Size unavailable"},
          Case{unknown, Amount::exact(0), true, "Size unavailable · scan stopped early"},
          Case{unknown, unknown, false, "Couldn’t measure this area"},
          Case{unknown, unknown, true, "Couldn’t measure this area · scan stopped early"}}) {
        auto report = reportOf({});
        report.metrics[log].occupied = logs;
        report.metrics[crashReport].occupied = crashReports;
        report.states[crashReport] = stoppedEarly ? limited : checked;
        EXPECT_EQ(usageText(avenueOf({log, crashReport}), report), text);
    }
}

TEST(AvenueStatus, OfAnAvenueThatIsNotScannedFollowsItsMode) {
    struct Case {
        CleanupAvenue::Mode mode;
        AvenueStatus status;
    };
    using enum CleanupAvenue::Mode;
    for (const auto& [mode, status] :
         {Case{manageInApp, {"Open Its App", "Size not measured here", SystemColor::blue}},
          Case{macOSManaged, {"Protected by macOS", "Size not measured here", SystemColor::purple}},
          Case{keptPrivate, {"Not Scanned for Privacy", "Size not measured here", SystemColor::secondaryLabel}},
          Case{includedAbove, {"Included Above", "Counted with Temporary app files", SystemColor::secondaryLabel}},
          Case{scanned, {"Checked Automatically", "Size not measured here", SystemColor::green}}}) {
        EXPECT_EQ(avenueStatus(avenueOf({}, mode), reportOf({}), HostSystem::macOS), status);
        EXPECT_EQ(avenueStatus(avenueOf({}, mode), {}, HostSystem::macOS), status) << "also before the first scan";
    }
}

// Every pair of states, with the rule that applies to it.
TEST(AvenueStatus, TheFirstRuleThatAppliesToACategoryWins) {
    const std::vector states{checked, limited, notPresent, relocated, permissionNeeded, unavailable};
    for (const auto first : states)
        for (const auto second : states) {
            SCOPED_TRACE(std::string(title(first)) + ", " + std::string(title(second)));
            const auto either = [&](CleanupScanState state) { return first == state || second == state; };
            auto report = reportOf({});
            report.states[log] = first;
            report.states[crashReport] = second;
            report.metrics[log].occupied = Amount::exact(5000);
            AvenueStatus expected{"No cleanup files found", "5 KB used here", SystemColor::blue};
            if (either(permissionNeeded))
                expected = {"Folder Access Needed", "Size unavailable", SystemColor::red};
            else if (either(unavailable))
                expected = {"Couldn’t Check", "Size unavailable", SystemColor::orange};
            else if (either(relocated))
                expected = {"Stored Somewhere Else", "Size unavailable", SystemColor::blue};
            else if (first == notPresent && second == notPresent)
                expected = {"Not on This Mac", "5 KB used here", SystemColor::blue};
            else if (either(limited))
                expected = {"Scan Incomplete", "5 KB used here · scan stopped early", SystemColor::orange};
            EXPECT_EQ(avenueStatus(avenueOf({log, crashReport}), report, HostSystem::macOS), expected);
        }
}

TEST(AvenueStatus, CountsTheFilesOfItsCategories) {
    struct Case {
        std::vector<CleanupCandidate> candidates;
        CleanupScanState state;
        AvenueStatus status;
    };
    const auto crash = candidateAt("/c", crashReport);
    const auto other = candidateAt("/o", cache);
    for (const auto& [candidates, state, status] :
         {Case{{logAt("/a")}, checked, {"1 file", "0 B used here", SystemColor::green}},
          Case{{logAt("/a"), other, crash}, checked, {"2 files", "0 B used here", SystemColor::green}},
          Case{{other}, checked, {"No cleanup files found", "0 B used here", SystemColor::blue}},
          Case{{logAt("/a")}, limited, {"1 file", "0 B used here · scan stopped early", SystemColor::green}},
          Case{{logAt("/a")}, permissionNeeded, {"Folder Access Needed", "Size unavailable", SystemColor::red}}}) {
        auto report = reportOf(candidates);
        report.states[log] = state;
        EXPECT_EQ(avenueStatus(avenueOf({log, crashReport}), report, HostSystem::macOS), status);
    }
}

TEST(AvenueStatus, SaysNotMeasuredYetBeforeTheFirstScanHasEnded) {
    EXPECT_EQ(avenueStatus(avenueOf({log}), {}, HostSystem::macOS),
              (AvenueStatus{"Checked Automatically", "Not measured yet", SystemColor::green}));
}

// Places of its own.
TEST(AvenueStatus, OfAnAvenueThatIsMeasuredSaysWhatIsKnownAndOffersACommandForWhatIsThere) {
    using enum CleanupAvenue::Mode;
    using Usage = GuideUsage;
    struct Case {
        std::optional<Usage> usage;
        AvenueStatus status;
        bool offersCommand;
    };
    const std::vector<std::filesystem::path> paths{"/home/ada/.cache/tool"};
    auto avenue = avenueOf({}, manageInApp);
    avenue.identifier = "tool";
    avenue.places = {{"~/.cache/tool"}};
    const auto reportWith = [](const std::optional<Usage>& usage) {
        auto report = reportOf({});
        if (usage)
            report.guide["tool"] = *usage;
        return report;
    };
    avenue.command = "tool clean";
    for (const auto& [usage, status, isOffered] :
         {Case{{}, {"Use Its Own Command", "Not measured yet", SystemColor::blue}, false},
          Case{Usage{checked, Amount::exact(2000), paths},
               {"Use Its Own Command", "2 KB used here", SystemColor::blue},
               true},
          Case{Usage{limited, Amount::atLeast(2000), paths},
               {"Use Its Own Command", "At least 2 KB seen", SystemColor::blue},
               true},
          Case{Usage{limited, Amount::atLeast(0), paths},
               {"Use Its Own Command", "Size unavailable", SystemColor::blue},
               false},
          Case{Usage{checked, Amount::exact(0), paths},
               {"Use Its Own Command", "0 B used here", SystemColor::blue},
               false},
          Case{Usage{permissionNeeded, Amount::unavailable(), {}},
               {"Folder Access Needed", "Size unavailable", SystemColor::red},
               true},
          Case{Usage{relocated, Amount::exact(0), {}},
               {"Stored Somewhere Else", "Size unavailable", SystemColor::blue},
               false},
          Case{Usage{unavailable, Amount::unavailable(), paths},
               {"Couldn’t Check", "Size unavailable", SystemColor::orange},
               false},
          Case{Usage{notPresent, Amount::exact(0), {}},
               {"Folder Not Found", "0 B used here", SystemColor::secondaryLabel},
               false}}) {
        const auto report = reportWith(usage);
        EXPECT_EQ(avenueStatus(avenue, report, HostSystem::linuxDesktop), status);
        EXPECT_EQ(offersCommand(avenue, report), isOffered) << status.primary << ", " << status.secondary;
        EXPECT_EQ(avenueRow(avenue, report, HostSystem::linuxDesktop).detail.contains("tool clean"), isOffered);
    }

    // What is searched for is not known to be there.
    avenue.places = {{"~/.var/app", CleanupAvenue::Place::Kind::leftBehind}};
    EXPECT_FALSE(offersCommand(avenue, reportWith(Usage{permissionNeeded, Amount::unavailable(), {}})));

    const auto measured = reportWith(Usage{checked, Amount::exact(2000), paths});
    avenue.mode = macOSManaged;
    EXPECT_EQ(avenueStatus(avenue, measured, HostSystem::linuxDesktop),
              (AvenueStatus{"Use Its Own Command", "2 KB used here", SystemColor::blue}));
    avenue.mode = manageInApp;
    avenue.command = {};
    EXPECT_EQ(avenueStatus(avenue, measured, HostSystem::linuxDesktop),
              (AvenueStatus{"Left to Its Owner", "2 KB used here", SystemColor::blue}));
    EXPECT_FALSE(offersCommand(avenue, measured));
    avenue.mode = macOSManaged;
    EXPECT_EQ(avenueStatus(avenue, measured, HostSystem::linuxDesktop),
              (AvenueStatus{"Protected by the System", "2 KB used here", SystemColor::purple}));
}

TEST(AvenueRow, ShowsTheAvenue) {
    EXPECT_EQ(avenueRow(avenueOf({}, CleanupAvenue::Mode::macOSManaged), {}, HostSystem::macOS),
              (AvenueRowContent{.symbolName = "symbol",
                                .title = "Title",
                                .detail = "Detail",
                                .status = "Protected by macOS",
                                .usage = "Size not measured here",
                                .statusColor = SystemColor::purple,
                                .button = std::nullopt}));
}

} // namespace

} // namespace vantry
