#include "cleanup/model/CleanupCandidate.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>

namespace vantry {

namespace {

using Category = CleanupCandidate::Category;
using RemovalDisposition = CleanupCandidate::RemovalDisposition;

constexpr struct {
    Category category;
    const char* rawValue;
    CleanupArea area;
    const char* symbolName;
    RemovalDisposition removalDisposition;
} categories[] = {
    {Category::cache, "Temporary App Files", CleanupArea::quickWins, "shippingbox", RemovalDisposition::reviewOnly},
    {Category::log, "Old Log Files", CleanupArea::quickWins, "doc.text", RemovalDisposition::directTrash},
    {Category::crashReport, "Old Crash Reports", CleanupArea::quickWins, "waveform.path.ecg",
     RemovalDisposition::directTrash},
    {Category::installer, "Downloaded App Installers", CleanupArea::downloads, "shippingbox.and.arrow.backward",
     RemovalDisposition::directTrash},
    {Category::archive, "Compressed Files", CleanupArea::downloads, "archivebox", RemovalDisposition::reviewOnly},
    {Category::interruptedDownload, "Partial Downloads", CleanupArea::downloads, "arrow.down.circle.dotted",
     RemovalDisposition::directTrash},
    {Category::largeDownload, "Large Downloads", CleanupArea::downloads, "doc.badge.ellipsis",
     RemovalDisposition::reviewOnly},
    {Category::macOSInstaller, "macOS Installer Apps", CleanupArea::apps, "macbook.and.iphone",
     RemovalDisposition::reviewOnly},
    {Category::orphan, "Old Window Data", CleanupArea::apps, "puzzlepiece.extension", RemovalDisposition::reviewOnly},
    {Category::developerBuild, "Rebuildable Project Data", CleanupArea::developer, "hammer",
     RemovalDisposition::reviewOnly},
    {Category::developerCache, "Coding-Tool Caches", CleanupArea::developer, "terminal",
     RemovalDisposition::reviewOnly},
    {Category::developerArchive, "Xcode Archives", CleanupArea::developer, "archivebox",
     RemovalDisposition::protectedFromRemoval},
    {Category::deviceBackup, "iPhone and iPad Backups", CleanupArea::devices, "externaldrive.badge.timemachine",
     RemovalDisposition::protectedFromRemoval},
    {Category::deviceSoftware, "Device Update Files", CleanupArea::devices, "iphone.and.arrow.forward",
     RemovalDisposition::reviewOnly},
};

} // namespace

TEST(CleanupCategory, EveryCategoryIsListedInOrder) {
    ASSERT_EQ(std::size(allCleanupCategories), std::size(categories));
    for (std::size_t i = 0; i < std::size(categories); ++i) {
        EXPECT_EQ(allCleanupCategories.at(i).value, categories[i].category);
        EXPECT_EQ(static_cast<std::size_t>(categories[i].category), i) << "the order of the cases";
    }
}

TEST(CleanupCategory, HasItsNameItsAreaItsSymbolAndItsRemovalRule) {
    for (const auto& expected : categories) {
        EXPECT_EQ(rawValue(expected.category), expected.rawValue);
        EXPECT_EQ(area(expected.category), expected.area) << expected.rawValue;
        EXPECT_EQ(symbolName(expected.category), expected.symbolName);
        EXPECT_EQ(removalDisposition(expected.category), expected.removalDisposition) << expected.rawValue;
        EXPECT_EQ(cleanupCategoryFromRawValue(expected.rawValue), expected.category);
    }
}

TEST(CleanupCategory, OnlyAnExactNameIsACategory) {
    for (const char* text : {"", "log", "cache", "old log files", "Old log files", "Old Log Files ", " Old Log Files",
                             "Old Log File", "Old Log Filess", "Coding Tools", "Low Risk", "1"})
        EXPECT_EQ(cleanupCategoryFromRawValue(text), std::nullopt) << text;
    EXPECT_EQ(cleanupCategoryFromRawValue(std::string("Old Log Files\0", 14)), std::nullopt);
}

TEST(CleanupCategory, NoneIsInTheSystemArea) {
    for (const auto& row : allCleanupCategories)
        EXPECT_NE(area(row.value), CleanupArea::system) << row.rawValue;
}

} // namespace vantry
