#include "cleanup/window/ResultSections.h"
#include "tests/cleanup/window/Candidates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> titlesOf(const CleanupSectionContent& section) {
    std::vector<std::string> titles;
    for (const auto& row : section.candidates)
        titles.push_back(row.title);
    for (const auto& row : section.avenues)
        titles.push_back(row.title);
    return titles;
}

AvenueButtonContent plainButton(CleanupAvenue::Action action) { return {.title = "Open", .action = action}; }

TEST(FilesFoundSections, GroupByAreaInTheOrderOfTheAreas) {
    const std::vector candidates{candidateAt("/backup", CleanupCategory::deviceBackup), logAt("/first"),
                                 candidateAt("/cache", CleanupCategory::cache), logAt("/second")};
    const auto sections = filesFoundSections(reportOf(candidates), {"/second", "/cache"});
    ASSERT_EQ(sections.size(), 2);
    EXPECT_EQ(sections[0].area, CleanupArea::quickWins);
    EXPECT_EQ(sections[0].symbolName, "sparkles");
    EXPECT_EQ(sections[0].title, "Temporary App Files");
    EXPECT_EQ(sections[0].subtitle, "Temporary files and old diagnostic records");
    EXPECT_EQ(sections[0].trailingText, "3 items");
    EXPECT_THAT(titlesOf(sections[0]), ElementsAre("first", "cache", "second"));
    EXPECT_FALSE(sections[0].candidates[0].selected);
    EXPECT_FALSE(sections[0].candidates[1].selected) << "only low risk can be selected";
    EXPECT_TRUE(sections[0].candidates[2].selected);
    EXPECT_EQ(sections[1].area, CleanupArea::devices);
    EXPECT_EQ(sections[1].trailingText, "1 item");
    EXPECT_THAT(titlesOf(sections[1]), ElementsAre("backup"));
}

TEST(FilesFoundSections, SayWhichSizesAreLowerBounds) {
    auto report = reportOf({logAt("/whole"), logAt("/cut/../cut")});
    report.incompletePaths = {"/cut"};
    const auto sections = filesFoundSections(report, {});
    ASSERT_EQ(sections.size(), 1);
    EXPECT_EQ(sections[0].candidates[0].sizeDetail, "");
    EXPECT_NE(sections[0].candidates[1].sizeDetail, "");
}

TEST(FilesFoundSections, EveryCategoryIsInOne) {
    for (const auto& row : allCleanupCategories) {
        const std::vector candidates{candidateAt("/x", row.value)};
        const auto sections = filesFoundSections(reportOf(candidates), {});
        ASSERT_EQ(sections.size(), 1) << row.rawValue;
        EXPECT_EQ(sections[0].area, row.area);
    }
    EXPECT_THAT(filesFoundSections(reportOf({}), {}), IsEmpty());
}

TEST(StorageGuideSections, ListEveryAvenueOfTheCatalogByArea) {
    const auto sections = storageGuideSections(reportOf({}), plainButton);
    std::vector<std::string> trailing;
    std::vector<std::string> titles;
    for (const auto& section : sections) {
        trailing.push_back(section.title + ": " + section.trailingText);
        EXPECT_THAT(section.candidates, IsEmpty());
        for (const auto& title : titlesOf(section))
            titles.push_back(title);
    }
    EXPECT_THAT(trailing, ElementsAre("Temporary App Files: 3 avenues", "Downloads & Large Files: 7 avenues",
                                      "Apps & App Data: 8 avenues", "Coding Tools: 7 avenues",
                                      "Devices & Backups: 4 avenues", "Managed by Apps or macOS: 8 avenues"));
    std::vector<std::string> catalog;
    for (const auto& avenue : CleanupAvenue::catalog())
        catalog.emplace_back(avenue.title);
    EXPECT_EQ(titles, catalog);
}

TEST(StorageGuideSections, AButtonIsWhereTheAvenueHasAnAction) {
    std::vector<std::string> without;
    std::size_t index = 0;
    for (const auto& section : storageGuideSections(reportOf({}), plainButton))
        for (const auto& row : section.avenues) {
            const auto& avenue = CleanupAvenue::catalog()[index++];
            EXPECT_EQ(row.button.transform([](const auto& button) { return button.action; }), avenue.action);
            if (!row.button)
                without.push_back(row.title);
        }
    EXPECT_THAT(without, ElementsAre("Temporary app files", "Logs and crash reports", "Temporary website files",
                                     "App languages and universal binaries"));
}

TEST(StorageGuideSections, ShowWhatTheScanFound) {
    auto report = reportOf({logAt("/a"), candidateAt("/b", CleanupCategory::crashReport)});
    report.metrics[CleanupCategory::log].occupied = CleanupByteAmount::exact(7'000'000);
    report.states[CleanupCategory::deviceBackup] = CleanupScanState::relocated;
    const auto sections = storageGuideSections(report, plainButton);
    EXPECT_EQ(sections[0].avenues[1].status, "2 files");
    EXPECT_EQ(sections[0].avenues[1].usage, "7 MB used here");
    EXPECT_EQ(sections[0].avenues[2].usage, "Counted with Temporary app files");
    EXPECT_EQ(sections[4].avenues[0].status, "Stored Somewhere Else");
}

TEST(EmptyState, DependsOnWhetherAScanRuns) {
    EXPECT_EQ(emptyState(true), (EmptyStateContent{"magnifyingglass", "Checking storage…",
                                                   "Only file sizes, dates, and types are checked. Personal file "
                                                   "contents stay untouched."}));
    EXPECT_EQ(emptyState(false),
              (EmptyStateContent{"checkmark.circle", "No cleanup files found",
                                 "The scan found 0 B it can offer here. Open Storage Guide for space managed by apps "
                                 "or macOS."}));
}

} // namespace

} // namespace vantry
