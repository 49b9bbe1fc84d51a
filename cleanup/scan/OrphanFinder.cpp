#include "cleanup/scan/OrphanFinder.h"

#include "base/Utf8.h"
#include "cleanup/scan/CleanupPlaces.h"
#include "cleanup/scan/CleanupValidation.h"
#include "platform/ItemFacts.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

constexpr auto category = CleanupCategory::orphan;
constexpr int deepestFolderOfApplications = 2;
constexpr int deepestFolderOfBundles = 1; // such as "LoginItems" in "Contents/Library"
constexpr std::array<std::string_view, 4> foldersOfBundles{"Contents/Library", "Contents/Frameworks",
                                                           "Contents/XPCServices", "Contents/PlugIns"};
// Where a bundle has its information: applications and most others, frameworks, and bundles without "Contents".
constexpr std::array<std::string_view, 3> placesOfInformation{"Contents/Info.plist", "Resources/Info.plist",
                                                              "Info.plist"};
const std::array<std::string, 1> identifierKeys{"CFBundleIdentifier"};

std::string lowercase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

/// Finds the property lists that say what bundles are called.
class BundleSearch {
public:
    explicit BundleSearch(ScanContext& context) : context_(context) {}

    void searchApplications(const std::filesystem::path& folder, int depth = 0) {
        for (const auto& url : list(folder))
            if (lowercaseExtension(url) == "app") {
                addInformation(url);
                for (const auto inside : foldersOfBundles)
                    searchBundles(url / inside);
            } else if (depth < deepestFolderOfApplications) {
                searchApplications(url, depth + 1);
            }
    }

    [[nodiscard]] bool complete() const { return complete_; }
    [[nodiscard]] const std::vector<std::filesystem::path>& files() const { return files_; }

private:
    void searchBundles(const std::filesystem::path& folder, int depth = 0) {
        for (const auto& url : list(folder)) {
            addInformation(url);
            if (depth < deepestFolderOfBundles && !url.has_extension())
                searchBundles(url, depth + 1);
        }
    }

    // The first that is there. One that may not be read leaves its bundle unknown.
    void addInformation(const std::filesystem::path& bundle) {
        if (leadsNowhere(bundle))
            complete_ = false; // to a disk that is not there now, for instance
        for (const auto place : placesOfInformation) {
            const auto file = bundle / place;
            const auto facts = readItemFacts(file);
            if (!facts && facts.error().kind == ErrorKind::notFound)
                continue;
            const auto real =
                facts ? resolvedPath(file) : Result<std::filesystem::path>(std::unexpected(facts.error()));
            if (real && isReadableFile(*real))
                files_.push_back(*real); // no link, which would not be read
            else
                complete_ = false;
            return;
        }
    }

    // What stands in `folder`, which may be missing, a file, or a link.
    std::vector<std::filesystem::path> list(const std::filesystem::path& folder) {
        if (!complete_)
            return {};
        const auto access = folderAccess(folder);
        if (access == FolderAccess::none) {
            complete_ = !leadsNowhere(folder);
            return {};
        }
        // A link is refused as a folder to list; what it leads to is listed.
        const auto real = isSymbolicLink(folder) ? resolvedPath(folder) : folder;
        auto children = access == FolderAccess::unreadable || !real || context_.isOver(category)
                            ? std::nullopt
                            : context_.listed(*real, category);
        complete_ = children.has_value();
        return children ? std::move(*children) : std::vector<std::filesystem::path>();
    }

    static bool leadsNowhere(const std::filesystem::path& path) {
        const auto target = resolvedPath(path);
        return isSymbolicLink(path) && !target;
    }

    ScanContext& context_;
    std::vector<std::filesystem::path> files_;
    bool complete_ = true;
};

} // namespace

std::optional<BundleIdentifiers> installedAndEmbeddedBundleIdentifiers(ScanContext& context) {
    BundleSearch search(context);
    const auto& environment = context.environment();
    for (const auto& folder :
         {environment.applications, environment.home / "Applications", environment.systemApplications})
        search.searchApplications(folder);
    if (!search.complete()) {
        context.limit(category);
        return std::nullopt;
    }
    const auto lists = context.read(search.files(), identifierKeys, category);
    if (!lists.complete)
        return std::nullopt;
    BundleIdentifiers identifiers;
    for (const auto& texts : lists.texts)
        if (texts)
            if (const auto identifier = texts->find(identifierKeys.front()); identifier != texts->end())
                identifiers.insert(lowercase(identifier->second));
    return identifiers;
}

std::vector<CleanupCandidate> orphanedAppData(ScanContext& context,
                                              std::span<const std::string> runningBundleIdentifiers) {
    const auto root = approvedRoots(category, context.environment()).front();
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
        claimed->insert(lowercase(identifier));
    for (const auto& url : states) {
        if (context.isOver(category))
            break;
        const auto facts = context.look(url, category);
        if (!facts || facts->kind != ItemFacts::Kind::folder || claimed->contains(lowercase(url.stem().native())) ||
            !isSafeCandidate(url, root))
            continue;
        candidates.push_back(context.candidate(url, withReplacementCharacters(url.stem().native()), category,
                                               "No installed, embedded, or running bundle claims this old saved-window "
                                               "state. Removing it resets restored windows for that app.",
                                               context.measure(url, category).size));
    }
    return candidates;
}

} // namespace vantry::CleanupScanner
