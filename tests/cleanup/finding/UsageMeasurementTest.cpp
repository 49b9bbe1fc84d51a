#include "cleanup/finding/UsageMeasurement.h"

#include "cleanup/model/CleanupRules.h"
#include "tests/cleanup/finding/ScanFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using std::chrono::nanoseconds;
using Amount = CleanupByteAmount;
using Amounts = std::vector<Amount>;

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t largeFloor = 262'144'000;

class Usage : public testing::Test, public ScanFixture {
protected:
    [[nodiscard]] Amount rootAmount(const std::filesystem::path& place) {
        return measureRoot(workers, at(place), budget.deadline);
    }
    [[nodiscard]] std::map<CleanupCategory, Amount> downloads() {
        return measureDownloadUsage(workers, environment, budget.deadline);
    }
    [[nodiscard]] Amount installers() {
        return measureMacOSInstallerUsage(workers, environment.places, budget.deadline);
    }
};

// The amounts of every category in whole homes are compared in RandomHomesTest.cpp.
TEST_F(Usage, AmountsAreAddedWithoutOverflow) {
    struct Case {
        Amounts parts;
        Amount sum;
    };
    const Case cases[] = {
        {{}, Amount::exact(0)},
        {{Amount::exact(5), Amount::exact(7)}, Amount::exact(12)},
        {{Amount::exact(5), Amount::unavailable()}, Amount::atLeast(5)},
        {{Amount::unavailable(), Amount::unavailable()}, Amount::unavailable()},
        {{Amount::unavailable()}, Amount::unavailable()},
        {{Amount::atLeast(-3)}, Amount::atLeast(0)},
        {{Amount::exact(-3)}, Amount::exact(0)},
        {{Amount::exact(-3), Amount::exact(4)}, Amount::exact(4)},
        {{Amount::exact(1), Amount::atLeast(2)}, Amount::atLeast(3)},
        {{Amount::atLeast(1), Amount::unavailable()}, Amount::atLeast(1)},
        {{Amount::exact(largest), Amount::exact(0)}, Amount::exact(largest)},
        {{Amount::exact(largest), Amount::exact(1)}, Amount::atLeast(largest)},
        {{Amount::exact(largest), Amount::exact(largest), Amount::unavailable()}, Amount::atLeast(largest)},
    };
    for (const auto& [parts, sum] : cases)
        EXPECT_EQ(combineAmounts(parts), sum) << testing::PrintToString(sum.knownBytes());
}

TEST_F(Usage, OfOnePlaceDependsOnItsKindAndItsMeasurement) {
    EXPECT_EQ(rootAmount("missing"), Amount::exact(0));
    file("file", 4096, {});
    EXPECT_EQ(rootAmount("file"), Amount::unavailable());
    const auto folder = folderWithFile("folder", 8192, {});
    EXPECT_EQ(rootAmount("folder"), Amount::exact(8192));
    link("link", folder);
    EXPECT_EQ(rootAmount("link"), Amount::unavailable());
    struct Case {
        DirectoryMetrics metrics;
        Amount amount;
    };
    const Case cases[] = {
        {{0, std::nullopt, true}, Amount::exact(0)},       {{-5, std::nullopt, true}, Amount::exact(0)},
        {{5, std::nullopt, true}, Amount::exact(5)},       {{1, std::nullopt, false}, Amount::atLeast(1)},
        {{0, std::nullopt, false}, Amount::unavailable()}, {{-1, std::nullopt, false}, Amount::unavailable()},
    };
    for (const auto& [metrics, amount] : cases) {
        workers.metrics[folder] = metrics;
        EXPECT_EQ(rootAmount("folder"), amount) << metrics.size << metrics.complete;
    }
}

TEST_F(Usage, OfInstallersLeavesOutLinks) {
    directory(applications());
    EXPECT_EQ(installers(), Amount::exact(0)) << "none is no unknown amount";
    folderWithFile(applications() / "Safari.app", 4096, {});
    folderWithFile(applications() / "Install macOS One.app", 4096, {});
    folderWithFile(applications() / "Install macOS Two.App", 8192, {});
    link(applications() / "Install macOS Three.app", applications() / "Safari.app");
    EXPECT_EQ(installers(), Amount::exact(12288));
    workers.metrics[applications() / "Install macOS One.app"] = {0, std::nullopt, false};
    EXPECT_EQ(installers(), Amount::atLeast(8192));
    workers.hung.insert(applications());
    EXPECT_EQ(installers(), Amount::unavailable());
}

TEST_F(Usage, OfDownloadsIsDividedByTheirExtensions) {
    file("Downloads/a.DMG", 4096, {});
    file("Downloads/b.pkg", 4096, {});
    file("Downloads/c.zip", 8192, {});
    file("Downloads/d.part", 16384, {});
    file("Downloads/large.mov", largeFloor, days(90) + nanoseconds(1));
    file("Downloads/young.mov", largeFloor, days(90));
    file("Downloads/small.mov", largeFloor - mebibyte, days(91));
    file("Downloads/sub/e.zip", 4096, {});
    file("Downloads/.hidden.zip", 4096, {});
    link("Downloads/f.zip", home() / "Downloads/c.zip");
    directory("Downloads/g.zip");
    auto amounts = downloads();
    EXPECT_EQ(amounts.size(), 4U);
    EXPECT_EQ(amounts[CleanupCategory::installer], Amount::exact(8192));
    EXPECT_EQ(amounts[CleanupCategory::archive], Amount::exact(8192));
    EXPECT_EQ(amounts[CleanupCategory::interruptedDownload], Amount::exact(16384));
    const auto large = amounts[CleanupCategory::largeDownload];
    EXPECT_TRUE(large.isExact());
    EXPECT_NEAR(static_cast<double>(large.knownBytes().value_or(0)), static_cast<double>(largeFloor), 65536.0);
}

TEST_F(Usage, OfDownloadsIsALowerBoundWhenTheListingWasIncompleteOrTimeRanOut) {
    file("Downloads/a.zip", 4096, {});
    workers.hung.insert(home() / "Downloads");
    for (const auto& [category, amount] : downloads())
        EXPECT_EQ(amount, Amount::atLeast(0)) << rawValue(category);
    workers.hung.clear();
    const auto past = deadlineIn(std::chrono::milliseconds(300));
    workers.afterListing = [&](const auto&) {
        while (!hasPassed(past)) {
        }
    };
    for (const auto& [category, amount] : measureDownloadUsage(workers, environment, past))
        EXPECT_EQ(amount, Amount::atLeast(0)) << rawValue(category);
}

TEST_F(Usage, OfDownloadsIsALowerBoundWhenAFileCannotBeExamined) {
    file("Downloads/a.zip", 4096, {});
    EXPECT_EQ(downloads().at(CleanupCategory::archive), Amount::exact(4096));
    workers.alsoListed = {home() / "Downloads/gone.zip"};
    EXPECT_EQ(downloads().at(CleanupCategory::archive), Amount::exact(4096)) << "it was removed in between";
    workers.alsoListed = {home() / "Downloads" / std::string(300, 'n')};
    EXPECT_EQ(downloads().at(CleanupCategory::archive), Amount::atLeast(4096));
    EXPECT_EQ(downloads().at(CleanupCategory::installer), Amount::atLeast(0));
}

TEST_F(Usage, OfACodingToolsCacheIncludesAFileInItsPlace) {
    file(".npm/_cacache", 4096, {});
    workers.metrics[home() / ".npm/_cacache"] = {4096, now, true};
    const auto amount = [&] {
        return measureCategoryUsage(workers, environment, {}, budget.deadline)
            .at(CleanupCategory::developerCache)
            .occupied;
    };
    EXPECT_EQ(amount(), Amount::exact(4096));
    link(".gradle/caches", home());
    EXPECT_EQ(amount(), Amount::atLeast(4096));
}

TEST_F(Usage, OfMatchingFilesCountsTheExtensionsInTheRootsThatExist) {
    using namespace std::string_view_literals;
    const std::vector extensions{"ipsw"sv, "dmg"sv};
    const std::vector roots{home() / "one", home() / "two", home() / "missing"};
    const auto amount = [&] { return measureMatchingFileUsage(workers, roots, extensions, budget.deadline); };
    EXPECT_EQ(amount(), Amount::exact(0));
    file("one/a.ipsw", 4096, {});
    file("one/b.DMG", 8192, {});
    file("one/c.zip", 4096, {});
    file("one/sub/d.dmg", 4096, {});
    link("one/e.dmg", home() / "one/b.DMG");
    file("two/f.ipsw", 4096, {});
    EXPECT_EQ(amount(), Amount::exact(16384));
    workers.hung.insert(home() / "two");
    EXPECT_EQ(amount(), Amount::atLeast(12288));
}

TEST_F(Usage, IsMeasuredInTheOrderOfTheCategoriesUntilOneDeadline) {
    using Category = CleanupCategory;
    std::vector<std::string> expected;
    const auto expect = [&](const char* question, Category category) {
        for (const auto& place : approvedRoots(category, environment.places))
            expected.push_back(question + directory(place).native());
    };
    expect("measure ", Category::cache);
    expect("measure ", Category::log);
    expect("list ", Category::installer);
    expect("list ", Category::macOSInstaller);
    expect("measure ", Category::orphan);
    expect("measure ", Category::developerBuild);
    expect("measure ", Category::developerCache);
    expect("measure ", Category::developerArchive);
    expect("measure ", Category::deviceBackup);
    expect("list ", Category::deviceSoftware);
    static_cast<void>(measureCategoryUsage(workers, environment, {}, budget.deadline));
    EXPECT_EQ(workers.asked, expected);
    EXPECT_EQ(std::set(workers.deadlines.begin(), workers.deadlines.end()), std::set{budget.deadline});
}

TEST_F(Usage, ReviewableBytesAndCountsComeFromTheCandidates) {
    const auto candidate = [&](CleanupCategory category, std::int64_t size) {
        return context.candidate(home() / "x", {}, "x", category, "", {.size = size, .complete = true});
    };
    const std::vector candidates{candidate(CleanupCategory::log, 5), candidate(CleanupCategory::log, 7),
                                 candidate(CleanupCategory::orphan, largest), candidate(CleanupCategory::orphan, 1)};
    const auto metrics = measureCategoryUsage(workers, environment, candidates, budget.deadline);
    EXPECT_EQ(metrics.at(CleanupCategory::log).reviewableBytes, 12);
    EXPECT_EQ(metrics.at(CleanupCategory::log).reviewableItemCount, 2);
    EXPECT_EQ(metrics.at(CleanupCategory::orphan).reviewableBytes, largest);
    EXPECT_EQ(metrics.at(CleanupCategory::orphan).reviewableItemCount, 2);
    EXPECT_EQ(metrics.at(CleanupCategory::cache).reviewableItemCount, 0);
}

} // namespace
} // namespace vantry::CleanupScanner
