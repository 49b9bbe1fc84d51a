#include "cleanup/scan/OldItemsRules.h"

#include "cleanup/scan/CleanupPlaces.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace vantry::CleanupScanner {

namespace {

using namespace std::string_view_literals;

constexpr std::int64_t kibibyte = 1024;
constexpr std::int64_t mebibyte = 1024 * kibibyte;

constexpr std::array cachesOfCodingTools{"Homebrew"sv, "CocoaPods"sv, "org.swift.swiftpm"sv};

struct OldFilesUse {
    CleanupCategory category;
    std::string_view reason;
    std::int64_t minimumSize;
    std::size_t maximumCount;
};

constexpr std::array<OldFilesUse, 5> oldFilesUses{{
    {CleanupCategory::log, "Old diagnostic record. Apps and macOS do not need this file to run.", 512 * kibibyte, 40},
    {CleanupCategory::crashReport, "Old crash report used only to diagnose a past problem.", 512 * kibibyte, 30},
    {CleanupCategory::installer, "Downloaded more than 21 days ago. Removing it does not uninstall the app.",
     5 * mebibyte, 30},
    {CleanupCategory::archive, "Not changed for 45 days. It may be your only copy, so open it before deciding.",
     25 * mebibyte, 30},
    {CleanupCategory::interruptedDownload, "An unfinished download that has not changed for at least 14 days.",
     5 * mebibyte, 20},
}};

// In the order of the category's places.
constexpr std::array developerArchiveReasons{
    "Xcode archive group not modified for at least 180 days. Keep anything needed for symbolication or release export."sv,
    "Device-support version not modified for at least 180 days. Xcode can restore it when that OS is used again."sv};

} // namespace

OldItemsRule oldCachesRule(const ScanEnvironment& environment) {
    const auto category = CleanupCategory::cache;
    return {.folder = approvedRoots(category, environment).front(),
            .category = category,
            .reason = "An app can normally recreate this. It has not changed for at least 30 days.",
            .olderThan = minimumAge(category),
            .minimumSize = 25 * mebibyte,
            .maximumCount = 35,
            .excludedNames = cachesOfCodingTools};
}

std::vector<OldItemsRule> oldFilesRules(const ScanEnvironment& environment) {
    std::vector<OldItemsRule> rules;
    for (const auto& use : oldFilesUses)
        rules.push_back({.folder = approvedRoots(use.category, environment).front(),
                         .category = use.category,
                         .reason = use.reason,
                         .olderThan = minimumAge(use.category),
                         .minimumSize = use.minimumSize,
                         .maximumCount = use.maximumCount,
                         .extensions = matchedExtensions(use.category)});
    rules.push_back(largeDownloadsRule(environment));
    return rules;
}

OldItemsRule largeDownloadsRule(const ScanEnvironment& environment) {
    static const auto otherDownloads = [] {
        std::vector<std::string_view> extensions;
        for (const auto category :
             {CleanupCategory::installer, CleanupCategory::archive, CleanupCategory::interruptedDownload})
            extensions.insert(extensions.end(), matchedExtensions(category).begin(), matchedExtensions(category).end());
        return extensions;
    }();
    const auto category = CleanupCategory::largeDownload;
    return {.folder = approvedRoots(category, environment).front(),
            .category = category,
            .reason = "A large Downloads file not changed for 90 days. Only you can know whether it is still needed.",
            .olderThan = minimumAge(category),
            .minimumSize = 250 * mebibyte,
            .maximumCount = 30,
            .excludedExtensions = otherDownloads};
}

std::vector<OldItemsRule> developerArchiveRules(const ScanEnvironment& environment) {
    const auto category = CleanupCategory::developerArchive;
    std::vector<OldItemsRule> rules;
    for (const auto& root : approvedRoots(category, environment))
        rules.push_back({.folder = root,
                         .category = category,
                         .reason = developerArchiveReasons.at(rules.size()),
                         .olderThan = minimumAge(category),
                         .minimumSize = 250 * mebibyte,
                         .maximumCount = 20});
    return rules;
}

std::vector<OldItemsRule> deviceSoftwareRules(const ScanEnvironment& environment) {
    const auto category = CleanupCategory::deviceSoftware;
    std::vector<OldItemsRule> rules;
    for (const auto& root : approvedRoots(category, environment))
        rules.push_back({.folder = root,
                         .category = category,
                         .reason = "Downloaded Apple-device update file not modified for at least 90 days.",
                         .olderThan = minimumAge(category),
                         .minimumSize = 250 * mebibyte,
                         .maximumCount = 10,
                         .extensions = matchedExtensions(category)});
    return rules;
}

} // namespace vantry::CleanupScanner
