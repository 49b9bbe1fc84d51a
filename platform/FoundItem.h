#pragma once

#include "base/Result.h"
#include "platform/FileFingerprint.h"
#include "platform/ItemFacts.h"

#include <filesystem>
#include <functional>

namespace vantry {

/// What an item is and what identifies it, all of it about one and the same item.
struct FoundItem {
    ItemFacts facts;
    FileFingerprint fingerprint;

    bool operator==(const FoundItem&) const = default;
};

/// The item at `path` itself, a link not followed, looked up once. What identifies it is read only if `isWanted` says
/// so about the rest, and, on Linux, while there is a descriptor left. Waits and fails as `readItemFacts` does. Any
/// thread.
[[nodiscard]] Result<FoundItem> readFoundItem(const std::filesystem::path& path,
                                              const std::function<bool(const ItemFacts&)>& isWanted);

/// What identifies the item at `path`, a link at its end not followed. A slash at the end changes nothing. Needs no
/// permission on the item. Waits as above; any thread. Never fails: where nothing can be read every field is absent.
[[nodiscard]] inline FileFingerprint readFileFingerprint(const std::filesystem::path& path) {
    const auto item = readFoundItem(path.has_filename() ? path : path.parent_path(), [](const auto&) { return true; });
    return item ? item->fingerprint : FileFingerprint();
}

} // namespace vantry
