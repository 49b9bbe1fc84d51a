#include "cleanup/gate/SafePaths.h"

#include "base/StandardizedPath.h"
#include "platform/ItemFacts.h"

#include <string>

namespace vantry::CleanupScanner {

bool pathHasNoSymbolicLinkComponents(const std::filesystem::path& path) {
    const std::filesystem::path standardized = standardizedPath(path);
    if (!standardized.is_absolute())
        return false;
    std::filesystem::path growing = "/";
    for (const auto& component : standardized.relative_path()) {
        growing /= component;
        const auto facts = readItemFacts(growing);
        if (!facts || facts->kind == ItemFacts::Kind::symbolicLink)
            return false;
    }
    return true;
}

bool leadsThroughLink(const std::filesystem::path& path) {
    std::filesystem::path growing = "/";
    for (const auto& component : std::filesystem::path(standardizedPath(path)).relative_path())
        if (isSymbolicLink(growing /= component))
            return true;
    return false;
}

bool liesBelow(const std::filesystem::path& candidate, const std::filesystem::path& root) {
    const std::string path = standardizedPath(candidate).native();
    const std::string rootPath = standardizedPath(root).native();
    return path != rootPath && path.starts_with(rootPath + "/");
}

bool isSafeCandidate(const std::filesystem::path& candidate, const std::filesystem::path& root) {
    return liesBelow(candidate, root) && !isSymbolicLink(candidate);
}

bool isSymbolicLink(const std::filesystem::path& path) {
    const auto facts = readItemFacts(standardizedPath(path));
    return facts && facts->kind == ItemFacts::Kind::symbolicLink;
}

} // namespace vantry::CleanupScanner
