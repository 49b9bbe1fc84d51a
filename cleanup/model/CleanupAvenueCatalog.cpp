#include "cleanup/model/CleanupAvenue.h"

namespace vantry {

namespace {

using Area = CleanupArea;
using Mode = CleanupAvenue::Mode;
using Category = CleanupCategory;
using Action = CleanupAvenue::Action;

// Each entry: title, text, then symbol, treatment, categories and button.
// clang-format off
std::vector<CleanupAvenue> everyAvenue() {
    return {
        {Area::quickWins, "Temporary app files",
         "Apps create these to load faster. Older files are shown for review; recent files stay untouched.",
         "shippingbox", Mode::scanned, {Category::cache}, {}},
        {Area::quickWins, "Logs and crash reports",
         "Old records used to diagnose app problems. Recent records are left alone.",
         "doc.text.magnifyingglass", Mode::scanned, {Category::log, Category::crashReport}, {}},
        {Area::quickWins, "Temporary website files",
         "Included in Temporary app files. History, passwords, sign-ins, cookies, and tabs are never scanned.",
         "safari", Mode::includedAbove, {}, {}},

        {Area::downloads, "Downloaded app installers",
         "Old .dmg, .pkg, and .xip files used to install apps. Removing one does not uninstall the app.",
         "shippingbox.and.arrow.backward", Mode::scanned, {Category::installer}, Action::downloads},
        {Area::downloads, "Compressed files",
         "ZIP, RAR, and 7z files may be the only copy of something important, so they open in Finder only.",
         "archivebox", Mode::scanned, {Category::archive}, Action::downloads},
        {Area::downloads, "Interrupted downloads",
         "Old partial-download files left by browsers and download tools.",
         "arrow.down.circle.dotted", Mode::scanned, {Category::interruptedDownload}, Action::downloads},
        {Area::downloads, "Large and old downloads",
         "Large files in Downloads are surfaced by metadata only and always require review.",
         "doc.badge.ellipsis", Mode::scanned, {Category::largeDownload}, Action::downloads},
        {Area::downloads, "Large or old personal files",
         "Desktop, Documents, Movies, Music, and external drives are not swept automatically.",
         "folder", Mode::keptPrivate, {}, Action::storageSettings},
        {Area::downloads, "Duplicates and similar media",
         "Requires reading or hashing personal files, so Ombrel does not run it silently.",
         "doc.on.doc", Mode::keptPrivate, {}, Action::home},
        {Area::downloads, "Screenshots and recordings",
         "Review through Finder or Storage Settings; image contents are not analyzed here.",
         "camera.viewfinder", Mode::keptPrivate, {}, Action::storageSettings},

        {Area::apps, "Old macOS installers",
         "Full macOS installer apps can occupy many gigabytes after an upgrade.",
         "macbook.and.iphone", Mode::scanned, {Category::macOSInstaller}, Action::applications},
        {Area::apps, "Old window data from removed apps",
         "These files remember window positions. Ombrel checks that the app is no longer installed.",
         "puzzlepiece.extension", Mode::scanned, {Category::orphan}, Action::applications},
        {Area::apps, "Unused apps",
         "Uninstall from Applications or Storage Settings so the app and its documents remain understandable.",
         "app.dashed", Mode::manageInApp, {}, Action::storageSettings},
        {Area::apps, "App data and saved content",
         "These folders can contain accounts, saves, projects, or downloads, so Ombrel never deletes them.",
         "folder.badge.gearshape", Mode::manageInApp, {}, Action::applications},
        {Area::apps, "Apps that run in the background",
         "Use System Settings or the owning app so required helpers and extensions are not broken.",
         "switch.2", Mode::manageInApp, {}, Action::storageSettings},
        {Area::apps, "Duplicate and older app copies",
         "Review app versions and locations in Finder; app contents are not modified automatically.",
         "square.on.square", Mode::keptPrivate, {}, Action::applications},
        {Area::apps, "Game libraries and emulator content",
         "Remove games through Steam or their launcher. ROMs, BIOS files, saves, memory cards, and mods are "
         "intentionally excluded.",
         "gamecontroller", Mode::manageInApp, {}, Action::applications},
        {Area::apps, "App languages and universal binaries",
         "Not offered: modifying signed app bundles can break updates, signatures, or launch behavior.",
         "globe", Mode::manageInApp, {}, {}},

        {Area::developer, "Rebuildable project data",
         "Xcode Derived Data and simulator caches can be recreated when needed.",
         "hammer", Mode::scanned, {Category::developerBuild}, Action::developer},
        {Area::developer, "Coding-tool downloads and caches",
         "Homebrew, SwiftPM, npm, CocoaPods, and Gradle can recreate these, but they remain review-only.",
         "terminal", Mode::scanned, {Category::developerCache}, Action::developer},
        {Area::developer, "Archives and device support",
         "Older Xcode archives and device-support versions require review before removal.",
         "archivebox", Mode::scanned, {Category::developerArchive}, Action::developer},
        {Area::developer, "Simulator devices and runtimes",
         "Manage through Xcode so unavailable runtimes and device state are removed cleanly.",
         "iphone.gen3", Mode::manageInApp, {}, Action::developer},
        {Area::developer, "Project build folders and dependencies",
         "node_modules, build, dist, .next, Python environments, and engine-generated data require user-chosen "
         "project roots.",
         "folder.badge.questionmark", Mode::keptPrivate, {}, Action::developer},
        {Area::developer, "Docker, Android, and virtual-machine data",
         "Images, volumes, emulator state, and VM disks can contain databases or irreplaceable work; use their owner.",
         "cube.transparent", Mode::manageInApp, {}, Action::applications},
        {Area::developer, "Creative render and media caches",
         "Final Cut, iMovie, Adobe, Resolve, and audio-tool caches are safest to clear inside the creative app.",
         "film.stack", Mode::manageInApp, {}, Action::applications},

        {Area::devices, "Old iPhone and iPad backups",
         "An old backup appears only when a newer local backup for the same device exists. Symlinked roots are never "
         "followed.",
         "externaldrive.badge.timemachine", Mode::scanned, {Category::deviceBackup}, Action::deviceBackups},
        {Area::devices, "Downloaded device software",
         "Old IPSW and related Apple-device update files stored locally.",
         "iphone.and.arrow.forward", Mode::scanned, {Category::deviceSoftware}, Action::deviceBackups},
        {Area::devices, "Photos, Music, TV, Podcasts, and Books",
         "Libraries and re-downloadable media stay under the app that owns their database.",
         "play.square.stack", Mode::manageInApp, {}, Action::photos},
        {Area::devices, "Sound libraries and downloadable content",
         "GarageBand, Logic, and MainStage libraries can be large and should be managed with Apple’s storage controls.",
         "waveform", Mode::manageInApp, {}, Action::storageSettings},

        {Area::system, "Mail attachments and downloads",
         "Mail can keep recent attachments only. Message contents are never inspected by Ombrel.",
         "envelope", Mode::manageInApp, {}, Action::mail},
        {Area::system, "Messages attachments",
         "Conversation attachments remain private and are managed in Apple Storage or Messages.",
         "message", Mode::manageInApp, {}, Action::messages},
        {Area::system, "Trash",
         "Trash is shown by macOS and stays recoverable until you intentionally empty it.",
         "trash", Mode::macOSManaged, {}, Action::storageSettings},
        {Area::system, "Cloud and optimized local copies",
         "iCloud Drive and Photos can keep originals in the cloud and reclaim local copies on demand.",
         "icloud", Mode::macOSManaged, {}, Action::storageSettings},
        {Area::system, "Space macOS can free automatically",
         "Time Machine snapshots and purgeable space are normally reclaimed automatically by macOS.",
         "clock.arrow.circlepath", Mode::macOSManaged, {}, Action::timeMachine},
        {Area::system, "System Data and temporary updates",
         "macOS owns swap, sleep images, update staging, indexes, and other runtime storage.",
         "internaldrive", Mode::macOSManaged, {}, Action::storageSettings},
        {Area::system, "Other users and Shared",
         "Another user’s files are not scanned. An administrator can review accounts in System Settings.",
         "person.2", Mode::keptPrivate, {}, Action::storageSettings},
        {Area::system, "External drives and protected storage",
         "Use Finder, Disk Utility, or the owning backup app for other drives and protected storage.",
         "externaldrive.connected.to.line.below", Mode::macOSManaged, {}, Action::storageSettings},
    };
}
// clang-format on

} // namespace

const std::vector<CleanupAvenue>& CleanupAvenue::catalog() {
    static const std::vector<CleanupAvenue> avenues = everyAvenue();
    return avenues;
}

} // namespace vantry
