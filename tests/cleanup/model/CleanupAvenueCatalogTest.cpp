#include "cleanup/model/CleanupAvenue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

namespace {

using Action = CleanupAvenue::Action;
using Category = CleanupCategory;
using Mode = CleanupAvenue::Mode;

const std::vector<CleanupAvenue> expectedAvenues = {
    {CleanupArea::quickWins,
     "Temporary app files",
     "Apps create these to load faster. Older files are shown for review; recent files stay untouched.",
     "shippingbox",
     Mode::scanned,
     {Category::cache},
     std::nullopt},
    {CleanupArea::quickWins,
     "Logs and crash reports",
     "Old records used to diagnose app problems. Recent records are left alone.",
     "doc.text.magnifyingglass",
     Mode::scanned,
     {Category::log, Category::crashReport},
     std::nullopt},
    {CleanupArea::quickWins,
     "Temporary website files",
     "Included in Temporary app files. History, passwords, sign-ins, cookies, and tabs are never scanned.",
     "safari",
     Mode::includedAbove,
     {},
     std::nullopt},
    {CleanupArea::downloads,
     "Downloaded app installers",
     "Old .dmg, .pkg, and .xip files used to install apps. Removing one does not uninstall the app.",
     "shippingbox.and.arrow.backward",
     Mode::scanned,
     {Category::installer},
     Action::downloads},
    {CleanupArea::downloads,
     "Compressed files",
     "ZIP, RAR, and 7z files may be the only copy of something important, so they open in Finder only.",
     "archivebox",
     Mode::scanned,
     {Category::archive},
     Action::downloads},
    {CleanupArea::downloads,
     "Interrupted downloads",
     "Old partial-download files left by browsers and download tools.",
     "arrow.down.circle.dotted",
     Mode::scanned,
     {Category::interruptedDownload},
     Action::downloads},
    {CleanupArea::downloads,
     "Large and old downloads",
     "Large files in Downloads are surfaced by metadata only and always require review.",
     "doc.badge.ellipsis",
     Mode::scanned,
     {Category::largeDownload},
     Action::downloads},
    {CleanupArea::downloads,
     "Large or old personal files",
     "Desktop, Documents, Movies, Music, and external drives are not swept automatically.",
     "folder",
     Mode::keptPrivate,
     {},
     Action::storageSettings},
    {CleanupArea::downloads,
     "Duplicates and similar media",
     "Requires reading or hashing personal files, so Ombrel does not run it silently.",
     "doc.on.doc",
     Mode::keptPrivate,
     {},
     Action::home},
    {CleanupArea::downloads,
     "Screenshots and recordings",
     "Review through Finder or Storage Settings; image contents are not analyzed here.",
     "camera.viewfinder",
     Mode::keptPrivate,
     {},
     Action::storageSettings},
    {CleanupArea::apps,
     "Old macOS installers",
     "Full macOS installer apps can occupy many gigabytes after an upgrade.",
     "macbook.and.iphone",
     Mode::scanned,
     {Category::macOSInstaller},
     Action::applications},
    {CleanupArea::apps,
     "Old window data from removed apps",
     "These files remember window positions. Ombrel checks that the app is no longer installed.",
     "puzzlepiece.extension",
     Mode::scanned,
     {Category::orphan},
     Action::applications},
    {CleanupArea::apps,
     "Unused apps",
     "Uninstall from Applications or Storage Settings so the app and its documents remain understandable.",
     "app.dashed",
     Mode::manageInApp,
     {},
     Action::storageSettings},
    {CleanupArea::apps,
     "App data and saved content",
     "These folders can contain accounts, saves, projects, or downloads, so Ombrel never deletes them.",
     "folder.badge.gearshape",
     Mode::manageInApp,
     {},
     Action::applications},
    {CleanupArea::apps,
     "Apps that run in the background",
     "Use System Settings or the owning app so required helpers and extensions are not broken.",
     "switch.2",
     Mode::manageInApp,
     {},
     Action::storageSettings},
    {CleanupArea::apps,
     "Duplicate and older app copies",
     "Review app versions and locations in Finder; app contents are not modified automatically.",
     "square.on.square",
     Mode::keptPrivate,
     {},
     Action::applications},
    {CleanupArea::apps,
     "Game libraries and emulator content",
     "Remove games through Steam or their launcher. ROMs, BIOS files, saves, memory cards, and mods are intentionally "
     "excluded.",
     "gamecontroller",
     Mode::manageInApp,
     {},
     Action::applications},
    {CleanupArea::apps,
     "App languages and universal binaries",
     "Not offered: modifying signed app bundles can break updates, signatures, or launch behavior.",
     "globe",
     Mode::manageInApp,
     {},
     std::nullopt},
    {CleanupArea::developer,
     "Rebuildable project data",
     "Xcode Derived Data and simulator caches can be recreated when needed.",
     "hammer",
     Mode::scanned,
     {Category::developerBuild},
     Action::developer},
    {CleanupArea::developer,
     "Coding-tool downloads and caches",
     "Homebrew, SwiftPM, npm, CocoaPods, and Gradle can recreate these, but they remain review-only.",
     "terminal",
     Mode::scanned,
     {Category::developerCache},
     Action::developer},
    {CleanupArea::developer,
     "Archives and device support",
     "Older Xcode archives and device-support versions require review before removal.",
     "archivebox",
     Mode::scanned,
     {Category::developerArchive},
     Action::developer},
    {CleanupArea::developer,
     "Simulator devices and runtimes",
     "Manage through Xcode so unavailable runtimes and device state are removed cleanly.",
     "iphone.gen3",
     Mode::manageInApp,
     {},
     Action::developer},
    {CleanupArea::developer,
     "Project build folders and dependencies",
     "node_modules, build, dist, .next, Python environments, and engine-generated data require user-chosen project "
     "roots.",
     "folder.badge.questionmark",
     Mode::keptPrivate,
     {},
     Action::developer},
    {CleanupArea::developer,
     "Docker, Android, and virtual-machine data",
     "Images, volumes, emulator state, and VM disks can contain databases or irreplaceable work; use their owner.",
     "cube.transparent",
     Mode::manageInApp,
     {},
     Action::applications},
    {CleanupArea::developer,
     "Creative render and media caches",
     "Final Cut, iMovie, Adobe, Resolve, and audio-tool caches are safest to clear inside the creative app.",
     "film.stack",
     Mode::manageInApp,
     {},
     Action::applications},
    {CleanupArea::devices,
     "Old iPhone and iPad backups",
     "An old backup appears only when a newer local backup for the same device exists. Symlinked roots are never "
     "followed.",
     "externaldrive.badge.timemachine",
     Mode::scanned,
     {Category::deviceBackup},
     Action::deviceBackups},
    {CleanupArea::devices,
     "Downloaded device software",
     "Old IPSW and related Apple-device update files stored locally.",
     "iphone.and.arrow.forward",
     Mode::scanned,
     {Category::deviceSoftware},
     Action::deviceBackups},
    {CleanupArea::devices,
     "Photos, Music, TV, Podcasts, and Books",
     "Libraries and re-downloadable media stay under the app that owns their database.",
     "play.square.stack",
     Mode::manageInApp,
     {},
     Action::photos},
    {CleanupArea::devices,
     "Sound libraries and downloadable content",
     "GarageBand, Logic, and MainStage libraries can be large and should be managed with Apple’s storage controls.",
     "waveform",
     Mode::manageInApp,
     {},
     Action::storageSettings},
    {CleanupArea::system,
     "Mail attachments and downloads",
     "Mail can keep recent attachments only. Message contents are never inspected by Ombrel.",
     "envelope",
     Mode::manageInApp,
     {},
     Action::mail},
    {CleanupArea::system,
     "Messages attachments",
     "Conversation attachments remain private and are managed in Apple Storage or Messages.",
     "message",
     Mode::manageInApp,
     {},
     Action::messages},
    {CleanupArea::system,
     "Trash",
     "Trash is shown by macOS and stays recoverable until you intentionally empty it.",
     "trash",
     Mode::macOSManaged,
     {},
     Action::storageSettings},
    {CleanupArea::system,
     "Cloud and optimized local copies",
     "iCloud Drive and Photos can keep originals in the cloud and reclaim local copies on demand.",
     "icloud",
     Mode::macOSManaged,
     {},
     Action::storageSettings},
    {CleanupArea::system,
     "Space macOS can free automatically",
     "Time Machine snapshots and purgeable space are normally reclaimed automatically by macOS.",
     "clock.arrow.circlepath",
     Mode::macOSManaged,
     {},
     Action::timeMachine},
    {CleanupArea::system,
     "System Data and temporary updates",
     "macOS owns swap, sleep images, update staging, indexes, and other runtime storage.",
     "internaldrive",
     Mode::macOSManaged,
     {},
     Action::storageSettings},
    {CleanupArea::system,
     "Other users and Shared",
     "Another user’s files are not scanned. An administrator can review accounts in System Settings.",
     "person.2",
     Mode::keptPrivate,
     {},
     Action::storageSettings},
    {CleanupArea::system,
     "External drives and protected storage",
     "Use Finder, Disk Utility, or the owning backup app for other drives and protected storage.",
     "externaldrive.connected.to.line.below",
     Mode::macOSManaged,
     {},
     Action::storageSettings},
};

template <class Key, class KeyOf>
std::map<Key, int> countsOf(KeyOf keyOf) {
    std::map<Key, int> counts;
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        ++counts[keyOf(avenue)];
    return counts;
}

} // namespace

TEST(CleanupAvenueCatalog, HoldsEveryAvenueInItsOrder) {
    const auto& avenues = CleanupAvenue::catalog();
    ASSERT_EQ(avenues.size(), 37U);
    ASSERT_EQ(expectedAvenues.size(), 37U);
    for (std::size_t i = 0; i < avenues.size(); ++i) {
        SCOPED_TRACE(i + 1);
        EXPECT_EQ(avenues[i].area, expectedAvenues[i].area);
        EXPECT_EQ(avenues[i].title, expectedAvenues[i].title);
        EXPECT_EQ(avenues[i].detail, expectedAvenues[i].detail);
        EXPECT_EQ(avenues[i].symbolName, expectedAvenues[i].symbolName);
        EXPECT_EQ(avenues[i].mode, expectedAvenues[i].mode);
        EXPECT_EQ(avenues[i].categories, expectedAvenues[i].categories);
        EXPECT_EQ(avenues[i].action, expectedAvenues[i].action);
        EXPECT_EQ(avenues[i], expectedAvenues[i]);
    }
}

TEST(CleanupAvenueCatalog, IsOneListForAll) { EXPECT_EQ(&CleanupAvenue::catalog(), &CleanupAvenue::catalog()); }

TEST(CleanupAvenueCatalog, EveryCategoryIsInExactlyOneAvenue) {
    std::map<Category, int> occurrences;
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        for (const Category category : avenue.categories)
            ++occurrences[category];
    EXPECT_EQ(occurrences.size(), allCleanupCategories.size());
    for (const auto& row : allCleanupCategories)
        EXPECT_EQ(occurrences[row.value], 1) << row.rawValue;
}

TEST(CleanupAvenueCatalog, AnAvenueHasCategoriesExactlyWhenItIsScanned) {
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        EXPECT_EQ(!avenue.categories.empty(), avenue.mode == Mode::scanned) << avenue.title;
}

TEST(CleanupAvenueCatalog, AnAvenueIsInTheAreaOfItsCategories) {
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        for (const Category category : avenue.categories)
            EXPECT_EQ(area(category), avenue.area) << avenue.title;
}

TEST(CleanupAvenueCatalog, OnlyLogsAndCrashReportsShareAnAvenue) {
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        if (avenue.categories.size() > 1) {
            EXPECT_EQ(avenue.title, "Logs and crash reports");
            EXPECT_EQ(avenue.categories, (std::set{Category::log, Category::crashReport}));
        }
    EXPECT_EQ(CleanupAvenue::catalog().at(1).categories.size(), 2U);
}

TEST(CleanupAvenueCatalog, NothingInTheSystemAreaIsScanned) {
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        EXPECT_FALSE(avenue.area == CleanupArea::system && avenue.mode == Mode::scanned) << avenue.title;
}

TEST(CleanupAvenueCatalog, HasSoManyAvenuesOfEachMode) {
    EXPECT_EQ(countsOf<Mode>([](const CleanupAvenue& avenue) { return avenue.mode; }),
              (std::map<Mode, int>{{Mode::scanned, 13},
                                   {Mode::manageInApp, 12},
                                   {Mode::macOSManaged, 5},
                                   {Mode::keptPrivate, 6},
                                   {Mode::includedAbove, 1}}));
}

TEST(CleanupAvenueCatalog, HasSoManyAvenuesInEachArea) {
    EXPECT_EQ(countsOf<CleanupArea>([](const CleanupAvenue& avenue) { return avenue.area; }),
              (std::map<CleanupArea, int>{{CleanupArea::quickWins, 3},
                                          {CleanupArea::downloads, 7},
                                          {CleanupArea::apps, 8},
                                          {CleanupArea::developer, 7},
                                          {CleanupArea::devices, 4},
                                          {CleanupArea::system, 8}}));
}

TEST(CleanupAvenueCatalog, TheAvenuesOfAnAreaStandTogetherInTheOrderOfTheAreas) {
    const auto& avenues = CleanupAvenue::catalog();
    EXPECT_TRUE(std::ranges::is_sorted(avenues, {}, &CleanupAvenue::area));
}

TEST(CleanupAvenueCatalog, FourAvenuesHaveNoButton) {
    std::vector<std::size_t> numbers;
    const auto& avenues = CleanupAvenue::catalog();
    for (std::size_t i = 0; i < avenues.size(); ++i)
        if (!avenues[i].action)
            numbers.push_back(i + 1);
    EXPECT_THAT(numbers, testing::ElementsAre(1, 2, 3, 18));
}

TEST(CleanupAvenueCatalog, EveryActionIsTheButtonOfAnAvenue) {
    std::set<Action> used;
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        if (avenue.action)
            used.insert(*avenue.action);
    EXPECT_EQ(used.size(), allCleanupAvenueActions.size());
}

TEST(CleanupAvenueCatalog, NoTwoAvenuesHaveOneTitle) {
    std::set<std::string_view> titles;
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        EXPECT_TRUE(titles.insert(avenue.title).second) << avenue.title;
}

TEST(CleanupAvenueCatalog, EveryTextIsThereAndHasTypographicApostrophesOnly) {
    int apostrophes = 0;
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog()) {
        EXPECT_FALSE(avenue.title.empty() || avenue.symbolName.empty()) << avenue.title;
        EXPECT_TRUE(avenue.detail.ends_with('.')) << avenue.title;
        for (const std::string_view text : {avenue.title, avenue.detail}) {
            EXPECT_EQ(text.find('\''), text.npos) << text;
            apostrophes += text.find("\xe2\x80\x99") != text.npos ? 1 : 0;
        }
    }
    EXPECT_EQ(apostrophes, 2);
}

} // namespace vantry
