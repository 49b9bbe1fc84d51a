#include "base/Format.h"
#include "cleanup/model/CleanupAvenue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace vantry {

namespace {

using Action = CleanupAvenue::Action;
using Category = CleanupCategory;
using Mode = CleanupAvenue::Mode;

/// The catalog as a user could read it: under the name of each area, two lines for an avenue.
std::string catalogPage() {
    std::string page = "\n";
    std::set<CleanupArea> headings;
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog()) {
        if (headings.insert(avenue.area).second)
            page += formatted("== {}\n", identifier(avenue.area));
        page += formatted("{} | {} | {}", avenue.title, avenue.symbolName, title(avenue.mode));
        for (const Category category : avenue.categories)
            page += formatted("{} {}", category == *avenue.categories.begin() ? " |" : ",", identifier(category));
        if (avenue.action)
            page += formatted(" | button {}", rawValue(*avenue.action));
        page += formatted("\n{}\n", avenue.detail);
    }
    return page;
}

template <class Key>
std::map<Key, int> countsBy(Key CleanupAvenue::*key) {
    std::map<Key, int> counts;
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        ++counts[avenue.*key];
    return counts;
}

} // namespace

TEST(CleanupAvenueCatalog, ReadsLikeThis) {
    EXPECT_EQ(catalogPage(), R"(
== quickWins
Temporary app files | shippingbox | Checked Automatically | cache
Apps create these to load faster. Older files are shown for review; recent files stay untouched.
Logs and crash reports | doc.text.magnifyingglass | Checked Automatically | log, crashReport
Old records used to diagnose app problems. Recent records are left alone.
Temporary website files | safari | Included Above
Included in Temporary app files. History, passwords, sign-ins, cookies, and tabs are never scanned.
== downloads
Downloaded app installers | shippingbox.and.arrow.backward | Checked Automatically | installer | button downloads
Old .dmg, .pkg, and .xip files used to install apps. Removing one does not uninstall the app.
Compressed files | archivebox | Checked Automatically | archive | button downloads
ZIP, RAR, and 7z files may be the only copy of something important, so they open in Finder only.
Interrupted downloads | arrow.down.circle.dotted | Checked Automatically | interruptedDownload | button downloads
Old partial-download files left by browsers and download tools.
Large and old downloads | doc.badge.ellipsis | Checked Automatically | largeDownload | button downloads
Large files in Downloads are surfaced by metadata only and always require review.
Large or old personal files | folder | Not Scanned for Privacy | button storageSettings
Desktop, Documents, Movies, Music, and external drives are not swept automatically.
Duplicates and similar media | doc.on.doc | Not Scanned for Privacy | button home
Requires reading or hashing personal files, so Ombrel does not run it silently.
Screenshots and recordings | camera.viewfinder | Not Scanned for Privacy | button storageSettings
Review through Finder or Storage Settings; image contents are not analyzed here.
== apps
Old macOS installers | macbook.and.iphone | Checked Automatically | macOSInstaller | button applications
Full macOS installer apps can occupy many gigabytes after an upgrade.
Old window data from removed apps | puzzlepiece.extension | Checked Automatically | orphan | button applications
These files remember window positions. Ombrel checks that the app is no longer installed.
Unused apps | app.dashed | Open Its App | button storageSettings
Uninstall from Applications or Storage Settings so the app and its documents remain understandable.
App data and saved content | folder.badge.gearshape | Open Its App | button applications
These folders can contain accounts, saves, projects, or downloads, so Ombrel never deletes them.
Apps that run in the background | switch.2 | Open Its App | button storageSettings
Use System Settings or the owning app so required helpers and extensions are not broken.
Duplicate and older app copies | square.on.square | Not Scanned for Privacy | button applications
Review app versions and locations in Finder; app contents are not modified automatically.
Game libraries and emulator content | gamecontroller | Open Its App | button applications
Remove games through Steam or their launcher. ROMs, BIOS files, saves, memory cards, and mods are intentionally excluded.
App languages and universal binaries | globe | Open Its App
Not offered: modifying signed app bundles can break updates, signatures, or launch behavior.
== developer
Rebuildable project data | hammer | Checked Automatically | developerBuild | button developer
Xcode Derived Data and simulator caches can be recreated when needed.
Coding-tool downloads and caches | terminal | Checked Automatically | developerCache | button developer
Homebrew, SwiftPM, npm, CocoaPods, and Gradle can recreate these, but they remain review-only.
Archives and device support | archivebox | Checked Automatically | developerArchive | button developer
Older Xcode archives and device-support versions require review before removal.
Simulator devices and runtimes | iphone.gen3 | Open Its App | button developer
Manage through Xcode so unavailable runtimes and device state are removed cleanly.
Project build folders and dependencies | folder.badge.questionmark | Not Scanned for Privacy | button developer
node_modules, build, dist, .next, Python environments, and engine-generated data require user-chosen project roots.
Docker, Android, and virtual-machine data | cube.transparent | Open Its App | button applications
Images, volumes, emulator state, and VM disks can contain databases or irreplaceable work; use their owner.
Creative render and media caches | film.stack | Open Its App | button applications
Final Cut, iMovie, Adobe, Resolve, and audio-tool caches are safest to clear inside the creative app.
== devices
Old iPhone and iPad backups | externaldrive.badge.timemachine | Checked Automatically | deviceBackup | button deviceBackups
An old backup appears only when a newer local backup for the same device exists. Symlinked roots are never followed.
Downloaded device software | iphone.and.arrow.forward | Checked Automatically | deviceSoftware | button deviceBackups
Old IPSW and related Apple-device update files stored locally.
Photos, Music, TV, Podcasts, and Books | play.square.stack | Open Its App | button photos
Libraries and re-downloadable media stay under the app that owns their database.
Sound libraries and downloadable content | waveform | Open Its App | button storageSettings
GarageBand, Logic, and MainStage libraries can be large and should be managed with Apple’s storage controls.
== system
Mail attachments and downloads | envelope | Open Its App | button mail
Mail can keep recent attachments only. Message contents are never inspected by Ombrel.
Messages attachments | message | Open Its App | button messages
Conversation attachments remain private and are managed in Apple Storage or Messages.
Trash | trash | Protected by macOS | button storageSettings
Trash is shown by macOS and stays recoverable until you intentionally empty it.
Cloud and optimized local copies | icloud | Protected by macOS | button storageSettings
iCloud Drive and Photos can keep originals in the cloud and reclaim local copies on demand.
Space macOS can free automatically | clock.arrow.circlepath | Protected by macOS | button timeMachine
Time Machine snapshots and purgeable space are normally reclaimed automatically by macOS.
System Data and temporary updates | internaldrive | Protected by macOS | button storageSettings
macOS owns swap, sleep images, update staging, indexes, and other runtime storage.
Other users and Shared | person.2 | Not Scanned for Privacy | button storageSettings
Another user’s files are not scanned. An administrator can review accounts in System Settings.
External drives and protected storage | externaldrive.connected.to.line.below | Protected by macOS | button storageSettings
Use Finder, Disk Utility, or the owning backup app for other drives and protected storage.
)");
}

TEST(CleanupAvenueCatalog, IsOneListForAll) { EXPECT_EQ(&CleanupAvenue::catalog(), &CleanupAvenue::catalog()); }

TEST(CleanupAvenueCatalog, EveryCategoryIsInExactlyOneAvenueOfItsAreaAndThatAvenueIsScanned) {
    for (const auto system : {HostSystem::macOS, HostSystem::linuxDesktop}) {
        std::multiset<Category> shown;
        for (const CleanupAvenue& avenue : CleanupAvenue::catalog(system)) {
            EXPECT_EQ(!avenue.categories.empty(), avenue.mode == Mode::scanned) << avenue.title;
            EXPECT_FALSE(avenue.area == CleanupArea::system && avenue.mode == Mode::scanned) << avenue.title;
            for (const Category category : avenue.categories) {
                EXPECT_EQ(area(category), avenue.area) << avenue.title;
                shown.insert(category);
            }
        }
        for (const auto& row : allCleanupCategories)
            EXPECT_EQ(shown.count(row.value), 1U) << row.rawValue;
    }
}

TEST(CleanupAvenueCatalog, OnLinuxWhatHasPlacesHasANameForProgramsAndNoCategory) {
    EXPECT_EQ(&CleanupAvenue::catalog(HostSystem::macOS), &CleanupAvenue::catalog());
    std::set<std::string_view> identifiers;
    std::set<std::string_view> titles;
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog(HostSystem::linuxDesktop)) {
        EXPECT_EQ(avenue.places.empty(), avenue.identifier.empty()) << avenue.title;
        EXPECT_TRUE(avenue.places.empty() || (avenue.categories.empty() && !avenue.action)) << avenue.title;
        EXPECT_TRUE(avenue.command.empty() || !avenue.places.empty()) << avenue.title;
        EXPECT_TRUE(titles.insert(avenue.title).second) << avenue.title;
        if (!avenue.identifier.empty())
            EXPECT_TRUE(identifiers.insert(avenue.identifier).second) << avenue.identifier;
        for (const auto& place : avenue.places)
            EXPECT_TRUE(place.path.starts_with('/') || place.path.starts_with('~') || place.path.starts_with("${"))
                << place.path;
    }
    EXPECT_EQ(identifiers.size(), 36U);
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog())
        EXPECT_TRUE(avenue.places.empty() && avenue.command.empty()) << avenue.title;
}

TEST(CleanupAvenueCatalog, OnLinuxACommandThatRemovesMoreOrLessThanWhatIsThereSaysSo) {
    const std::map<std::string_view, std::string> said{
        {"ccache -C", "removes all of them"},
        {"go clean -cache", "removes all of them"},
        {"go clean -modcache", "removes all of them"},
        {"docker image prune", "removes only images that have no name and no container"},
        {"podman image prune", "removes only images that have no name and no container"},
        {"sudo dnf clean packages", "removes only the packages"}};
    std::size_t found = 0;
    for (const CleanupAvenue& avenue : CleanupAvenue::catalog(HostSystem::linuxDesktop))
        if (const auto expected = said.find(avenue.command); expected != said.end()) {
            ++found;
            EXPECT_THAT(std::string(avenue.detail), testing::HasSubstr(expected->second)) << avenue.command;
        }
    EXPECT_EQ(found, said.size());
}

TEST(CleanupAvenueCatalog, HasThisManyAvenuesOfEachModeAndInEachArea) {
    EXPECT_EQ(countsBy(&CleanupAvenue::mode), (std::map<Mode, int>{{Mode::scanned, 13},
                                                                   {Mode::manageInApp, 12},
                                                                   {Mode::macOSManaged, 5},
                                                                   {Mode::keptPrivate, 6},
                                                                   {Mode::includedAbove, 1}}));
    EXPECT_EQ(countsBy(&CleanupAvenue::area), (std::map<CleanupArea, int>{{CleanupArea::quickWins, 3},
                                                                          {CleanupArea::downloads, 7},
                                                                          {CleanupArea::apps, 8},
                                                                          {CleanupArea::developer, 7},
                                                                          {CleanupArea::devices, 4},
                                                                          {CleanupArea::system, 8}}));
}

TEST(CleanupAvenueCatalog, FourAvenuesHaveNoButtonAndEveryActionIsAButtonSomewhere) {
    std::vector<std::size_t> withoutButton;
    std::set<Action> used;
    const auto& avenues = CleanupAvenue::catalog();
    for (std::size_t i = 0; i < avenues.size(); ++i)
        if (avenues[i].action)
            used.insert(*avenues[i].action);
        else
            withoutButton.push_back(i + 1);
    EXPECT_THAT(withoutButton, testing::ElementsAre(1, 2, 3, 18));
    EXPECT_EQ(used.size(), allCleanupAvenueActions.size());
}

} // namespace vantry
