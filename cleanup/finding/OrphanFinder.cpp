#include "cleanup/finding/OrphanFinder.h"

#include "base/Text.h"
#include "base/Utf8.h"
#include "cleanup/gate/SafePaths.h"
#include "cleanup/model/CleanupRules.h"
#include "platform/ItemFacts.h"

#include <utility>

namespace vantry::CleanupScanner {

namespace {

constexpr auto category = CleanupCategory::orphan;

} // namespace

std::optional<BundleIdentifiers> installedAndEmbeddedBundleIdentifiers(ScanContext& context) {
    const auto& places = context.environment().places;
    const auto told = context.bundleIdentifiers(
        {.folders = {places.applications, places.home / "Applications", places.systemApplications},
         .system = places.systemApplications.parent_path()},
        category);
    if (!told)
        return std::nullopt;
    BundleIdentifiers identifiers;
    for (const auto& identifier : *told)
        identifiers.insert(asciiLowercase(identifier));
    return identifiers;
}

std::vector<CleanupCandidate> orphanedAppData(ScanContext& context,
                                              std::span<const std::string> runningBundleIdentifiers) {
    const auto root = approvedRoots(category, context.environment().places).front();
    std::vector<CleanupCandidate> candidates;
    if (isSymbolicLink(root) || context.isOver(category))
        return candidates;
    std::vector<std::filesystem::path> states;
    for (auto& url : context.list(root, category))
        if (lowercaseExtension(url) == "savedstate")
            states.push_back(std::move(url));
    if (states.empty())
        return candidates;
    auto claimed = installedAndEmbeddedBundleIdentifiers(context);
    if (!claimed)
        return candidates;
    for (const auto& identifier : runningBundleIdentifiers)
        claimed->insert(asciiLowercase(identifier));
    const auto isClaimed = [&](const std::string& identifier) {
        const auto& isRegistered = context.environment().isRegisteredApplication;
        return claimed->contains(asciiLowercase(identifier)) || (isRegistered && isRegistered(identifier));
    };
    for (const auto& url : states) {
        if (context.isOver(category))
            break;
        const auto item = context.look(url, category, ScanContext::isFolder);
        if (!item || isClaimed(url.stem().native()) || !liesBelow(url, root))
            continue;
        if (const auto metrics = context.measure(url, category))
            candidates.push_back(
                context.candidate(url, item->fingerprint, withReplacementCharacters(url.stem().native()), category,
                                  "No installed, embedded, or running bundle claims this old saved-window state. "
                                  "Removing it resets restored windows for that app.",
                                  *metrics));
    }
    return candidates;
}

} // namespace vantry::CleanupScanner
