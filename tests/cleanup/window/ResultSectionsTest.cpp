#include "cleanup/window/ResultSections.h"
#include "tests/support/Candidates.h"

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
    const auto sections = filesFoundSections(reportOf(candidates), {"/second", "/cache"}, HostSystem::macOS);
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

TEST(FilesFoundSections, ShowWhichSizesAreLowerBounds) {
    auto report = reportOf({logAt("/whole"), logAt("/cut/../cut")});
    report.incompletePaths = {"/cut"};
    const auto sections = filesFoundSections(report, {}, HostSystem::macOS);
    ASSERT_EQ(sections.size(), 1);
    EXPECT_EQ(sections[0].candidates[0].sizeDetail, "");
    EXPECT_NE(sections[0].candidates[1].sizeDetail, "");
}

TEST(FilesFoundSections, EveryCategoryHasASection) {
    for (const auto& row : allCleanupCategories) {
        const std::vector candidates{candidateAt("/x", row.value)};
        const auto sections = filesFoundSections(reportOf(candidates), {}, HostSystem::macOS);
        ASSERT_EQ(sections.size(), 1) << row.rawValue;
        EXPECT_EQ(sections[0].area, row.area);
    }
    EXPECT_THAT(filesFoundSections(reportOf({}), {}, HostSystem::macOS), IsEmpty());
}

TEST(StorageGuideSections, ListEveryAvenueOfTheCatalogByArea) {
    const auto sections = storageGuideSections(reportOf({}), HostSystem::macOS, plainButton);
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

TEST(StorageGuideSections, OnLinuxAvenuesThatAreNotPresentComeLastInTheirArea) {
    auto report = reportOf({});
    report.states[CleanupCategory::installer] = CleanupScanState::notPresent;
    report.states[CleanupCategory::archive] = CleanupScanState::checked;
    report.states[CleanupCategory::log] = CleanupScanState::notPresent;
    report.states[CleanupCategory::crashReport] = CleanupScanState::checked;
    const auto onMac = storageGuideSections(report, HostSystem::macOS, plainButton);
    EXPECT_THAT(titlesOf(onMac[1]).front(), "Downloaded app installers");
    const auto onLinux = storageGuideSections(report, HostSystem::linuxDesktop, plainButton);
    EXPECT_THAT(titlesOf(onLinux[0]),
                ElementsAre("Temporary app files", "Logs and crash reports", "Caches that have not changed for 30 days",
                            "Caches of Flatpak apps", "Temporary website files", "Thumbnails",
                            "Old logs of sessions and tools", "Submitted crash reports"));
    EXPECT_THAT(titlesOf(onLinux[1]).front(), "Compressed files");
    EXPECT_THAT(titlesOf(onLinux[1]).back(), "Downloaded app installers");
    EXPECT_EQ(onLinux[1].avenues.back().status, "Not on This Computer");
    EXPECT_EQ(onLinux[1].avenues.back().button->action, AvenueButtonAction(CleanupAvenue::Action::downloads));
    EXPECT_EQ(onLinux[1].trailingText, onMac[1].trailingText);
}

TEST(StorageGuideSections, AButtonIsWhereTheAvenueHasAnAction) {
    std::size_t index = 0;
    for (const auto& section : storageGuideSections(reportOf({}), HostSystem::macOS, plainButton))
        for (const auto& row : section.avenues) {
            const auto& avenue = CleanupAvenue::catalog()[index++];
            EXPECT_EQ(row.button.transform([](const auto& button) { return button.action; }),
                      avenue.action.transform([](auto action) { return AvenueButtonAction(action); }));
        }
}

TEST(StorageGuideSections, OnLinuxACommandCanBeCopiedAndStandsBelowTheExplanation) {
    auto report = reportOf({});
    for (const auto& avenue : CleanupAvenue::catalog(HostSystem::linuxDesktop))
        if (!avenue.places.empty())
            report.guide[std::string(avenue.identifier)] = {
                CleanupScanState::checked, CleanupByteAmount::exact(7'000'000), {"/a place"}};
    std::size_t commands = 0;
    for (const auto& section : storageGuideSections(report, HostSystem::linuxDesktop, plainButton))
        for (const auto& row : section.avenues) {
            const auto* copy = row.button ? std::get_if<CopyCommand>(&row.button->action) : nullptr;
            if (!copy)
                continue;
            ++commands;
            EXPECT_EQ(row.button->title, "Copy Command");
            EXPECT_EQ(row.button->tooltip, copy->command);
            EXPECT_TRUE(row.button->enabled);
            EXPECT_TRUE(row.detail.ends_with("\n" + copy->command)) << row.detail;
            EXPECT_EQ(row.usage, "7 MB used here");
        }
    EXPECT_EQ(commands, 21);

    report.guide["trash"] = {CleanupScanState::checked, CleanupByteAmount::exact(0), {}, "It is emptied on Mondays."};
    EXPECT_EQ(storageGuideSections(report, HostSystem::linuxDesktop, plainButton)[5].avenues[0].detail,
              "What is in it stays recoverable until it is deleted. Empty it in the file manager. It is emptied on "
              "Mondays.");

    report.guide["npm"] = {CleanupScanState::notPresent, CleanupByteAmount::exact(0), {}};
    const auto sections = storageGuideSections(report, HostSystem::linuxDesktop, plainButton);
    const auto& absent = sections[3].avenues.back();
    EXPECT_EQ(absent.title, "npm");
    EXPECT_EQ(absent.status, "Folder Not Found");
    EXPECT_FALSE(absent.button.has_value());
    EXPECT_FALSE(absent.detail.contains("npm cache verify"));
}

TEST(StorageGuideSections, ShowWhatTheScanFound) {
    auto report = reportOf({logAt("/a"), candidateAt("/b", CleanupCategory::crashReport)});
    report.metrics[CleanupCategory::log].occupied = CleanupByteAmount::exact(7'000'000);
    report.states[CleanupCategory::deviceBackup] = CleanupScanState::relocated;
    const auto sections = storageGuideSections(report, HostSystem::macOS, plainButton);
    EXPECT_EQ(sections[0].avenues[1].status, "2 files");
    EXPECT_EQ(sections[0].avenues[1].usage, "7 MB used here");
    EXPECT_EQ(sections[0].avenues[2].usage, "Counted with Temporary app files");
    EXPECT_EQ(sections[4].avenues[0].status, "Stored Somewhere Else");
}

TEST(EmptyState, DependsOnWhetherAScanRuns) {
    EXPECT_EQ(emptyState(true, HostSystem::macOS),
              (EmptyStateContent{"magnifyingglass", "Checking storage…",
                                 "Only file sizes, dates, and types are checked. Personal file "
                                 "contents stay untouched."}));
    EXPECT_EQ(emptyState(false, HostSystem::macOS),
              (EmptyStateContent{"checkmark.circle", "No cleanup files found",
                                 "The scan found 0 B it can offer here. Open Storage Guide for space managed by apps "
                                 "or macOS."}));
}

} // namespace

} // namespace vantry
