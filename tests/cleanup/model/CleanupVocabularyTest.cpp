#include "base/Format.h"
#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/model/CleanupScanReport.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

namespace vantry {

using Action = CleanupAvenue::Action;
using Confidence = CleanupCandidate::Confidence;
using Mode = CleanupAvenue::Mode;
using RemovalDisposition = CleanupCandidate::RemovalDisposition;

TEST(CleanupVocabulary, TheAreasReadLikeThis) {
    std::string page = "\n";
    for (const auto& [area, name, number, heading, explanation, symbol] : allCleanupAreas) {
        page += formatted("{} {} | {} | {} | {}\n", rawValue(area), identifier(area), title(area), subtitle(area),
                          symbolName(area));
        EXPECT_EQ(cleanupAreaFromRawValue(number), area);
    }
    EXPECT_EQ(page, R"(
0 quickWins | Temporary App Files | Temporary files and old diagnostic records | sparkles
1 downloads | Downloads & Large Files | Downloaded files that may no longer be needed | arrow.down.circle
2 apps | Apps & App Data | Installers and app-owned data | square.grid.2x2
3 developer | Coding Tools | Files created by coding tools | hammer
4 devices | Devices & Backups | Backups and downloaded device updates | externaldrive
5 system | Managed by Apps or macOS | Shown for awareness and never removed here | gearshape.2
)");
    for (const int number : {-1, 6, 7, 100, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_EQ(cleanupAreaFromRawValue(number), std::nullopt) << number;
}

TEST(CleanupVocabulary, TheCategoriesReadLikeThis) {
    std::string page = "\n";
    for (const auto& [category, name, text, itsArea, symbol, rule] : allCleanupCategories) {
        page += formatted("{} | {} | {} | {} | {}\n", identifier(category), rawValue(category),
                          identifier(area(category)), symbolName(category), identifier(removalDisposition(category)));
        EXPECT_EQ(cleanupCategoryFromRawValue(text), category);
    }
    EXPECT_EQ(page, R"(
cache | Temporary App Files | quickWins | shippingbox | reviewOnly
log | Old Log Files | quickWins | doc.text | directTrash
crashReport | Old Crash Reports | quickWins | waveform.path.ecg | directTrash
installer | Downloaded App Installers | downloads | shippingbox.and.arrow.backward | directTrash
archive | Compressed Files | downloads | archivebox | reviewOnly
interruptedDownload | Partial Downloads | downloads | arrow.down.circle.dotted | directTrash
largeDownload | Large Downloads | downloads | doc.badge.ellipsis | reviewOnly
macOSInstaller | macOS Installer Apps | apps | macbook.and.iphone | reviewOnly
orphan | Old Window Data | apps | puzzlepiece.extension | reviewOnly
developerBuild | Rebuildable Project Data | developer | hammer | reviewOnly
developerCache | Coding-Tool Caches | developer | terminal | reviewOnly
developerArchive | Xcode Archives | developer | archivebox | protected
deviceBackup | iPhone and iPad Backups | devices | externaldrive.badge.timemachine | protected
deviceSoftware | Device Update Files | devices | iphone.and.arrow.forward | reviewOnly
)");
}

TEST(CleanupVocabulary, TheSmallerEnumerationsReadLikeThis) {
    EXPECT_EQ(title(RemovalDisposition::directTrash), "Low Risk");
    EXPECT_EQ(title(RemovalDisposition::reviewOnly), "Review in Finder");
    EXPECT_EQ(title(RemovalDisposition::protectedFromRemoval), "Protected");

    EXPECT_EQ(title(CleanupScanState::checked), "Checked");
    EXPECT_EQ(title(CleanupScanState::limited), "Scan Incomplete");
    EXPECT_EQ(title(CleanupScanState::notPresent), "Not on This Mac");
    EXPECT_EQ(title(CleanupScanState::relocated), "Stored Somewhere Else");
    EXPECT_EQ(title(CleanupScanState::permissionNeeded), "Folder Access Needed");
    EXPECT_EQ(title(CleanupScanState::unavailable), "Couldn\xe2\x80\x99t Check");

    std::string confidences;
    for (const auto& row : allCleanupConfidences) {
        confidences += formatted("{}, ", rawValue(row.value));
        EXPECT_EQ(cleanupConfidenceFromRawValue(rawValue(row.value)), row.value);
    }
    EXPECT_EQ(confidences, "Low Risk, Review First, ");
    EXPECT_EQ(rawValue(Confidence::suggested), "Low Risk");

    // The colours of the modes are checked where they are shown, in AvenueRowTest.cpp.
    std::string modes;
    for (const auto& row : allCleanupAvenueModes)
        modes += formatted("{}, ", title(row.value));
    EXPECT_EQ(modes, "Checked Automatically, Open Its App, Protected by macOS, Not Scanned for Privacy, "
                     "Included Above, ");

    std::string actions = "\n";
    for (const auto& row : allCleanupAvenueActions) {
        actions += formatted("{} | {}\n", rawValue(row.value), title(row.value));
        EXPECT_EQ(cleanupAvenueActionFromRawValue(row.rawValue), row.value);
    }
    EXPECT_EQ(actions, R"(
downloads | Open Downloads
applications | Open Applications
home | Open Home Folder
storageSettings | Open Storage Settings
mail | Open Mail
messages | Open Messages
photos | Open Photos
timeMachine | Open Time Machine
developer | Open Developer Folder
deviceBackups | Open Backups
)");
}

TEST(CleanupVocabulary, OnlyAnExactRawValueNamesACase) {
    for (const char* text : {"", "log", "cache", "old log files", "Old log files", "Old Log Files ", " Old Log Files",
                             "Old Log File", "Old Log Filess", "Coding Tools", "Low Risk", "1"})
        EXPECT_EQ(cleanupCategoryFromRawValue(text), std::nullopt) << text;
    EXPECT_EQ(cleanupCategoryFromRawValue(std::string("Old Log Files\0", 14)), std::nullopt);
    for (const char* text :
         {"", "suggested", "review", "low risk", "Low risk", "Low Risk ", "Review", "Review in Finder"})
        EXPECT_EQ(cleanupConfidenceFromRawValue(text), std::nullopt) << text;
    for (const char* text :
         {"", "Downloads", "download", "downloads ", "Open Downloads", "devicebackups", "trash", "0"})
        EXPECT_EQ(cleanupAvenueActionFromRawValue(text), std::nullopt) << text;
}

} // namespace vantry
