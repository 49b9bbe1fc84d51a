#pragma once

#include "base/Result.h"
#include "platform/FileFingerprint.h"
#include "platform/ItemFacts.h"

#include <filesystem>
#include <functional>

namespace vantry {

/// The facts about one item and its fingerprint.
struct FoundItem {
    ItemFacts facts;
    FileFingerprint fingerprint;

    bool operator==(const FoundItem&) const = default;
};

/// The item at `path` itself (a link is not followed), looked up once. The fingerprint is read only if `isWanted`
/// accepts the facts and, on Linux, a descriptor is free. Waits and fails like `readItemFacts`. Any thread.
[[nodiscard]] Result<FoundItem> readFoundItem(const std::filesystem::path& path,
                                              const std::function<bool(const ItemFacts&)>& isWanted);

/// The fingerprint of the item at `path`. A link at the end is not followed, a slash at the end is ignored. Needs no
/// permission on the item. Waits as above; any thread. Never fails: if nothing can be read, every field is absent.
[[nodiscard]] inline FileFingerprint readFileFingerprint(const std::filesystem::path& path) {
    const auto item = readFoundItem(path.has_filename() ? path : path.parent_path(), [](const auto&) { return true; });
    return item ? item->fingerprint : FileFingerprint();
}

} // namespace vantry
