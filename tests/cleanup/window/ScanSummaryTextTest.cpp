#include "cleanup/window/ScanSummaryText.h"
#include "tests/cleanup/window/Candidates.h"

#include <gtest/gtest.h>
#include <limits>

namespace vantry {

namespace {

using States = std::vector<std::pair<CleanupCategory, CleanupScanState>>;

TEST(ScanSummaryText, TellsStorageFindingsAndWhatIsMissingInOneLine) {
    const std::vector none = std::vector<CleanupCandidate>();
    const std::vector one{logAt("/l/a", 1'000'000)};
    const std::vector two{logAt("/l/a", 1'000'000), candidateAt("/c/b", CleanupCategory::cache, 2'000'000)};
    const std::vector three{logAt("/l/a", 1'000'000), logAt("/l/b", 1'000'000), logAt("/l/c", 1'000'000)};
    using enum CleanupCategory;
    using enum CleanupScanState;
    struct Case {
        bool snapshot;
        std::vector<CleanupCandidate> candidates;
        States states;
        std::string line;
    };
    const std::vector<Case> cases{
        {true,
         none,
         {},
         "Scan complete · This Mac uses 300 GB of 500 GB · 0 B of cleanup files found · 0 low-risk files can be "
         "selected"},
        {true,
         one,
         {},
         "Scan complete · This Mac uses 300 GB of 500 GB · 1 file shown use 1 MB · 1 low-risk file can be selected"},
        {true,
         two,
         {},
         "Scan complete · This Mac uses 300 GB of 500 GB · 2 files shown use 3 MB · 1 low-risk file can be selected"},
        {true,
         three,
         {{cache, notPresent}, {deviceBackup, relocated}},
         "Scan complete · This Mac uses 300 GB of 500 GB · 3 files shown use 3 MB · 3 low-risk files can be selected"},
        {false,
         none,
         {},
         "Mac storage total unavailable · 0 B of cleanup files found · 0 low-risk files can be selected"},
        {true,
         two,
         {{cache, permissionNeeded}},
         "This Mac uses 300 GB of 500 GB · 2 files shown use 3 MB · 1 low-risk file can be selected · 1 avenue needs "
         "access"},
        // One avenue shows both of these categories.
        {true,
         none,
         {{log, permissionNeeded}, {crashReport, permissionNeeded}},
         "This Mac uses 300 GB of 500 GB · 0 B of cleanup files found · 0 low-risk files can be selected · 1 avenue "
         "needs access"},
        {true,
         none,
         {{log, permissionNeeded}, {crashReport, unavailable}, {cache, permissionNeeded}},
         "This Mac uses 300 GB of 500 GB · 0 B of cleanup files found · 0 low-risk files can be selected · 2 avenues "
         "needs access"},
        {true,
         none,
         {{orphan, unavailable}},
         "This Mac uses 300 GB of 500 GB · 0 B of cleanup files found · 0 low-risk files can be selected · 1 avenue "
         "unavailable"},
        {true,
         none,
         {{cache, limited}},
         "This Mac uses 300 GB of 500 GB · 0 B of cleanup files found · 0 low-risk files can be selected · some totals "
         "are minimums because a scan stopped early"},
        {false,
         two,
         {{cache, permissionNeeded}, {orphan, unavailable}, {deviceSoftware, unavailable}, {log, limited}},
         "Mac storage total unavailable · 2 files shown use 3 MB · 1 low-risk file can be selected · 1 avenue needs "
         "access · 2 avenues unavailable · some totals are minimums because a scan stopped early"},
    };
    for (const auto& [snapshot, candidates, states, line] : cases) {
        auto report = reportOf(candidates);
        if (!snapshot)
            report.storageSnapshot.reset();
        for (const auto& [category, state] : states)
            report.states[category] = state;
        EXPECT_EQ(scanSummaryText(report), line);
    }
}

TEST(ScanSummaryText, HasNoSeparatorDoubledOrAtAnEnd) {
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
                const auto line = scanSummaryText(report);
                EXPECT_EQ(line.find("· ·"), std::string::npos) << line;
                EXPECT_EQ(line.find("  "), std::string::npos) << line;
                EXPECT_FALSE(line.starts_with(" ") || line.starts_with("·")) << line;
                EXPECT_FALSE(line.ends_with(" ") || line.ends_with("·")) << line;
            }
}

TEST(ScanSummaryText, ATotalThatWouldOverflowStaysAtTheLargestValue) {
    const auto largest = std::numeric_limits<std::int64_t>::max();
    const auto one = scanSummaryText(reportOf({logAt("/a", largest)}));
    const auto two = scanSummaryText(reportOf({logAt("/a", largest), logAt("/b", largest)}));
    const auto size = [](const std::string& line) {
        const auto start = line.find("shown use ");
        return line.substr(start, line.find(" · ", start) - start);
    };
    EXPECT_EQ(size(one), size(two));
}

} // namespace

} // namespace vantry
