#include "cleanup/finding/DeveloperFinders.h"

#include "base/Utf8.h"
#include "cleanup/finding/OldFileFinders.h"
#include "cleanup/gate/SafePaths.h"
#include "cleanup/model/CleanupRules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace vantry::CleanupScanner {

namespace {

struct Place {
    std::string_view title;
    std::string_view reason;
};

// In the order of the categories' roots.
constexpr auto buildPlaces = std::to_array<Place>({
    {"Xcode Derived Data", "Xcode recreates Derived Data when a project is built."},
    {"Simulator Caches", "Simulator caches are recreated when needed."},
});
constexpr auto cachePlaces = std::to_array<Place>({
    {"Homebrew Cache", "Homebrew downloads and rebuilds this cache when needed."},
    {"CocoaPods Cache", "CocoaPods downloads this cache again when needed."},
    {"Swift Package Manager Cache", "Swift Package Manager resolves this cache again when needed."},
    {"npm Cache", "npm verifies and downloads package cache content again when needed."},
    {"Gradle Cache", "Gradle rebuilds and downloads cache content again when needed."},
});

// Offers each place as a whole, of any age, unless it is empty.
template <std::size_t Count>
void appendWholeFolders(ScanContext& context, CleanupCategory category, const std::array<Place, Count>& places,
                        std::vector<CleanupCandidate>& candidates) {
    const auto roots = approvedRoots(category, context.environment().places);
    for (std::size_t i = 0; i < roots.size() && !context.isOver(category); ++i) {
        const auto item = context.look(roots[i], category, ScanContext::isFolder);
        if (!item || !liesBelow(roots[i], context.environment().places.home))
            continue;
        if (const auto metrics = context.measure(roots[i], category); metrics && metrics->size > 0)
            candidates.push_back(context.candidate(roots[i], item->fingerprint, std::string(places.at(i).title),
                                                   category, places.at(i).reason, *metrics));
    }
}

} // namespace

std::vector<CleanupCandidate> developerCandidates(ScanContext& context) {
    std::vector<CleanupCandidate> candidates;
    for (const auto& rule : cleanupRules(CleanupCategory::developerArchive, context.environment().places))
        std::ranges::move(oldDirectoryChildren(context, rule), std::back_inserter(candidates));
    appendWholeFolders(context, CleanupCategory::developerBuild, buildPlaces, candidates);
    appendWholeFolders(context, CleanupCategory::developerCache, cachePlaces, candidates);
    return candidates;
}

bool isMacOSInstaller(const std::filesystem::path& application) {
    return lowercaseExtension(application) == "app" && application.filename().native().starts_with("Install macOS");
}

std::vector<CleanupCandidate> macOSInstallers(ScanContext& context) {
    const auto category = CleanupCategory::macOSInstaller;
    const auto root = approvedRoots(category, context.environment().places).front();
    std::vector<CleanupCandidate> candidates;
    if (context.isOver(category))
        return candidates;
    for (const auto& url : context.list(root, category)) {
        if (context.isOver(category))
            break;
        if (!isMacOSInstaller(url))
            continue;
        const auto item = context.look(url, category, ScanContext::isFolder);
        if (!item || !liesBelow(url, root))
            continue;
        if (const auto metrics = context.measure(url, category))
            candidates.push_back(context.candidate(
                url, item->fingerprint, withReplacementCharacters(url.stem().native()), category,
                "Full macOS installer app. Keep it only if you plan to upgrade or create install media.", *metrics));
    }
    return candidates;
}

} // namespace vantry::CleanupScanner
