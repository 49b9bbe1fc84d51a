#include "cleanup/model/CleanupRules.h"

#include "base/Format.h"
#include "cleanup/model/CleanupCategory.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace vantry::CleanupScanner {
namespace {

const CleanupPlaces onMacOS{.home = "/home/ada", .system = HostSystem::macOS};
const CleanupPlaces onLinux{.home = "/home/ada", .system = HostSystem::linuxDesktop};

std::string pageOf(const CleanupRule& rule) {
    auto line = formatted("{} in {}", identifier(rule.category), rule.folder.native());
    if (rule.maximumCount > 0)
        line +=
            formatted(": {} days, {} bytes, at most {}", rule.olderThan.count(), rule.minimumSize, rule.maximumCount);
    for (const auto extension : rule.extensions)
        line += formatted(" .{}", extension);
    for (const auto name : rule.excludedNames)
        line += formatted(", not {}", name);
    return line + "\n" + (rule.reason.empty() ? "" : formatted("    {}\n", rule.reason));
}

TEST(CleanupRules, ReadLikeThis) {
    std::string page = "\n";
    for (const auto& row : allCleanupCategories)
        for (const auto& rule : cleanupRules(row.value, onMacOS))
            page += pageOf(rule);
    EXPECT_EQ(page, R"(
cache in /home/ada/Library/Caches: 30 days, 26214400 bytes, at most 35, not Homebrew, not CocoaPods, not org.swift.swiftpm
    An app can normally recreate this. It has not changed for at least 30 days.
log in /home/ada/Library/Logs: 30 days, 524288 bytes, at most 40 .log .txt .out
    Old diagnostic record. Apps and macOS do not need this file to run.
crashReport in /home/ada/Library/Logs/DiagnosticReports: 30 days, 524288 bytes, at most 30 .crash .ips .diag .spin .hang
    Old crash report used only to diagnose a past problem.
installer in /home/ada/Downloads: 21 days, 5242880 bytes, at most 30 .dmg .pkg .xip
    Downloaded more than 21 days ago. Removing it does not uninstall the app.
archive in /home/ada/Downloads: 45 days, 26214400 bytes, at most 30 .zip .7z .rar .tar .gz .bz2 .xz .tgz .tbz .tbz2
    Not changed for 45 days. It may be your only copy, so open it before deciding.
interruptedDownload in /home/ada/Downloads: 14 days, 5242880 bytes, at most 20 .download .crdownload .part .partial
    An unfinished download that has not changed for at least 14 days.
largeDownload in /home/ada/Downloads: 90 days, 262144000 bytes, at most 30
    A large Downloads file not changed for 90 days. Only you can know whether it is still needed.
macOSInstaller in /Applications
orphan in /home/ada/Library/Saved Application State
developerBuild in /home/ada/Library/Developer/Xcode/DerivedData
developerBuild in /home/ada/Library/Developer/CoreSimulator/Caches
developerCache in /home/ada/Library/Caches/Homebrew
developerCache in /home/ada/Library/Caches/CocoaPods
developerCache in /home/ada/Library/Caches/org.swift.swiftpm
developerCache in /home/ada/.npm/_cacache
developerCache in /home/ada/.gradle/caches
developerArchive in /home/ada/Library/Developer/Xcode/Archives: 180 days, 262144000 bytes, at most 20
    Xcode archive group not modified for at least 180 days. Keep anything needed for symbolication or release export.
developerArchive in /home/ada/Library/Developer/Xcode/iOS DeviceSupport: 180 days, 262144000 bytes, at most 20
    Device-support version not modified for at least 180 days. Xcode can restore it when that OS is used again.
deviceBackup in /home/ada/Library/Application Support/MobileSync/Backup
deviceSoftware in /home/ada/Library/iTunes/iPhone Software Updates: 90 days, 262144000 bytes, at most 10 .ipsw .ipcc .dmg
    Downloaded Apple-device update file not modified for at least 90 days.
deviceSoftware in /home/ada/Library/iTunes/iPad Software Updates: 90 days, 262144000 bytes, at most 10 .ipsw .ipcc .dmg
    Downloaded Apple-device update file not modified for at least 90 days.
deviceSoftware in /home/ada/Library/iTunes/iPod Software Updates: 90 days, 262144000 bytes, at most 10 .ipsw .ipcc .dmg
    Downloaded Apple-device update file not modified for at least 90 days.
)");
}

TEST(CleanupRules, OnLinuxDifferInTheInstallersAndPartialDownloadsOnly) {
    std::string page = "\n";
    for (const auto& row : allCleanupCategories) {
        const auto here = cleanupRules(row.value, onLinux);
        const auto there = cleanupRules(row.value, onMacOS);
        ASSERT_EQ(here.size(), there.size());
        for (std::size_t i = 0; i < here.size(); ++i)
            if (pageOf(here[i]) != pageOf(there[i]))
                page += pageOf(here[i]);
    }
    EXPECT_EQ(page, R"(
installer in /home/ada/Downloads: 21 days, 5242880 bytes, at most 30 .dmg .pkg .xip .deb .rpm .snap .flatpak
    Downloaded more than 21 days ago. Removing it does not uninstall the app.
interruptedDownload in /home/ada/Downloads: 14 days, 5242880 bytes, at most 20 .download .crdownload .part .partial .aria2 .!qb .opdownload
    An unfinished download that has not changed for at least 14 days.
)");
}

auto extensionsOf(CleanupCategory category, const CleanupPlaces& places) {
    return cleanupRules(category, places).front().extensions;
}

TEST(CleanupRules, LargeDownloadsAreFilesThatNoOtherRuleMatches) {
    for (const auto& places : {onMacOS, onLinux}) {
        const auto large = cleanupRules(CleanupCategory::largeDownload, places).front();
        for (const auto category :
             {CleanupCategory::installer, CleanupCategory::archive, CleanupCategory::interruptedDownload})
            for (const auto extension : extensionsOf(category, places))
                EXPECT_FALSE(matchesExtensions(large, "file." + std::string(extension))) << extension;
        for (const char* name : {"film.mov", "disk", "old.log", "a.iso"})
            EXPECT_TRUE(matchesExtensions(large, name)) << name;
        // What runs where it lies is no download on Linux, and nothing special on macOS.
        for (const char* name : {"Editor.AppImage", "setup.run"})
            EXPECT_EQ(matchesExtensions(large, name), places.system == HostSystem::macOS) << name;
    }
}

TEST(CleanupRules, TheDownloadFolderIsTheOneThatTheUserNamed) {
    auto places = onLinux;
    places.downloads = "/home/ada/Téléchargements";
    for (const auto& row : allCleanupCategories)
        for (const auto& root : approvedRoots(row.value, places))
            EXPECT_NE(root, "/home/ada/Downloads") << row.identifier;
    EXPECT_EQ(approvedRoots(CleanupCategory::installer, places), std::vector{places.downloads});
}

TEST(CleanupRules, AnExtensionIsWhatFollowsTheLastDotInLowerCase) {
    const std::pair<const char*, const char*> cases[] = {
        {"a.log", "log"}, {"a.LOG", "log"},     {"a.b.Gz", "gz"}, {"a", ""},          {".log", ""},         {"a.", ""},
        {"..", ""},       {"dir.app/file", ""}, {"a.É", "É"},     {"a.\xff", "\xff"}, {"/x/y.tar.xz", "xz"}};
    for (const auto& [path, extension] : cases)
        EXPECT_EQ(lowercaseExtension(path), extension) << path;
}

} // namespace
} // namespace vantry::CleanupScanner
