#include "cleanup/window/SummaryTexts.h"
#include "tests/support/Candidates.h"

#include <gtest/gtest.h>
#include <limits>

namespace vantry {

namespace {

using States = std::vector<std::pair<CleanupCategory, CleanupScanState>>;

TEST(ScanSummaryText, IsOneLineOfStorageFindingsAndGaps) {
    const std::vector<CleanupCandidate> none;
    const std::vector one{logAt("/l/a", 1'000'000)};
    const std::vector two{logAt("/l/a", 1'000'000), candidateAt("/c/b", CleanupCategory::cache, 2'000'000)};
    const std::vector three{logAt("/l/a", 1'000'000), logAt("/l/b", 1'000'000), logAt("/l/c", 1'000'000)};
    const std::string mac = "This Mac uses 300 GB of 500 GB";
    const std::string nothing = " · 0 B of cleanup files found · 0 low-risk files can be selected";
    const std::string twoFiles = " · 2 files shown use 3 MB · 1 low-risk file can be selected";
    const std::string early = " · some totals are minimums because a scan stopped early";
    using enum CleanupCategory;
    using enum CleanupScanState;
    struct Case {
        std::vector<CleanupCandidate> candidates;
        States states;
        std::string line;
    };
    const Case cases[] = {
        {none, {}, "Scan complete · " + mac + nothing},
        {one, {}, "Scan complete · " + mac + " · 1 file shown use 1 MB · 1 low-risk file can be selected"},
        {two, {}, "Scan complete · " + mac + twoFiles},
        {three,
         {{cache, notPresent}, {deviceBackup, relocated}},
         "Scan complete · " + mac + " · 3 files shown use 3 MB · 3 low-risk files can be selected"},
        {two, {{cache, permissionNeeded}}, mac + twoFiles + " · 1 avenue needs access"},
        // One avenue shows both of these categories.
        {none, {{log, permissionNeeded}, {crashReport, permissionNeeded}}, mac + nothing + " · 1 avenue needs access"},
        {none,
         {{log, permissionNeeded}, {crashReport, unavailable}, {cache, permissionNeeded}},
         mac + nothing + " · 2 avenues needs access"},
        {none, {{orphan, unavailable}}, mac + nothing + " · 1 avenue unavailable"},
        {none, {{cache, limited}}, mac + nothing + early},
    };
    for (const auto& [candidates, states, line] : cases) {
        auto report = reportOf(candidates);
        for (const auto& [category, state] : states)
            report.states[category] = state;
        EXPECT_EQ(scanSummaryText(report, HostSystem::macOS), line);
    }
    auto report = reportOf(none);
    report.storageSnapshot.reset();
    EXPECT_EQ(scanSummaryText(report, HostSystem::macOS), "Mac storage total unavailable" + nothing);
    report.states[cache] = permissionNeeded;
    report.states[orphan] = report.states[deviceSoftware] = unavailable;
    report.states[log] = limited;
    EXPECT_EQ(scanSummaryText(report, HostSystem::macOS),
              "Mac storage total unavailable" + nothing + " · 1 avenue needs access · 2 avenues unavailable" + early);
}

TEST(ScanSummaryText, HasNoDoubledSeparatorAndNoneAtTheEnds) {
    for (const bool snapshot : {true, false})
        for (const bool found : {true, false})
            for (const auto state :
                 {CleanupScanState::checked, CleanupScanState::limited, CleanupScanState::notPresent,
                  CleanupScanState::relocated, CleanupScanState::permissionNeeded, CleanupScanState::unavailable}) {
                auto report = reportOf(found ? std::vector{logAt("/a")} : std::vector<CleanupCandidate>());
                if (!snapshot)
                    report.storageSnapshot.reset();
                for (auto& [category, known] : report.states)
                    known = state;
                const auto line = scanSummaryText(report, HostSystem::macOS);
                EXPECT_EQ(line.find("· ·"), std::string::npos) << line;
                EXPECT_EQ(line.find("  "), std::string::npos) << line;
                EXPECT_FALSE(line.starts_with(" ") || line.starts_with("·")) << line;
                EXPECT_FALSE(line.ends_with(" ") || line.ends_with("·")) << line;
            }
}

TEST(ScanSummaryText, AnOverflowingTotalStaysAtTheLargestValue) {
    const auto largest = std::numeric_limits<std::int64_t>::max();
    const auto one = scanSummaryText(reportOf({logAt("/a", largest)}), HostSystem::macOS);
    const auto two = scanSummaryText(reportOf({logAt("/a", largest), logAt("/b", largest)}), HostSystem::macOS);
    const auto size = [](const std::string& line) {
        const auto start = line.find("shown use ");
        return line.substr(start, line.find(" · ", start) - start);
    };
    EXPECT_EQ(size(one), size(two));
}

} // namespace

} // namespace vantry
