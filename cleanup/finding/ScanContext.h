#pragma once

#include "base/Deadline.h"
#include "cleanup/finding/ScanEnvironment.h"
#include "cleanup/measuring/ScanWorkers.h"
#include "cleanup/model/CleanupCandidate.h"
#include "platform/FoundItem.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// What the finders of one scan share.
struct ScanBudget {
    Deadline deadline;                           ///< finders stop there and return what they have
    std::set<CleanupCategory> limitedCategories; ///< their finders stopped early or left something out; only grows
    std::set<std::string> incompletePaths = {};  ///< ids of candidates that were not measured completely; only grows
};

/// What a finder works with. Blocking; one thread, the scan's own.
class ScanContext {
public:
    ScanContext(const ScanEnvironment& environment, ScanWorkers& workers, ScanBudget& budget)
        : environment_(environment),
          workers_(workers),
          budget_(budget) {}

    [[nodiscard]] const ScanEnvironment& environment() const { return environment_; }

    void limit(CleanupCategory category) { budget_.limitedCategories.insert(category); }
    /// Whether the time is up; if so, limits the category.
    [[nodiscard]] bool isOver(CleanupCategory category);
    /// The visible entries of `folder`; absent, with the category limited, if the listing is not complete.
    [[nodiscard]] std::optional<std::vector<std::filesystem::path>> listed(const std::filesystem::path& folder,
                                                                           CleanupCategory category);
    /// The same, but empty instead of absent.
    [[nodiscard]] std::vector<std::filesystem::path> list(const std::filesystem::path& folder,
                                                          CleanupCategory category);
    /// The item at `url` and its fingerprint, from one look, if it `isWanted`. Absent as well if there is no item or,
    /// with the category limited, if that cannot be found out.
    [[nodiscard]] std::optional<FoundItem> look(const std::filesystem::path& url, CleanupCategory category,
                                                const std::function<bool(const ItemFacts&)>& isWanted);
    /// Measures `folder` and the folders in it in one go, if that takes no longer than one measurement. Measuring them
    /// one by one afterwards then costs nothing.
    void measureAhead(const std::filesystem::path& folder);
    /// Measures `folder`. An incomplete measurement limits the category. Absent if nothing was measured.
    [[nodiscard]] std::optional<DirectoryMetrics> measure(const std::filesystem::path& folder,
                                                          CleanupCategory category);
    /// The texts under `keys` in each file. Limits the category if the time was too short for all of them.
    [[nodiscard]] PropertyListTexts read(std::span<const std::filesystem::path> files,
                                         std::span<const std::string> keys, CleanupCategory category);

    /// The identifiers of the bundles in `places`; absent, with the category limited, if some may be missing.
    [[nodiscard]] std::optional<std::set<std::string>>
    bundleIdentifiers(const CleanupScanner::ApplicationPlaces& places, CleanupCategory category);

    /// A candidate found at this moment. It is low risk exactly if its category may go to the Trash. If `metrics` is
    /// not complete, its size is recorded as a lower bound.
    [[nodiscard]] CleanupCandidate candidate(const std::filesystem::path& url, const FileFingerprint& fingerprint,
                                             std::string title, CleanupCategory category, std::string_view reason,
                                             const DirectoryMetrics& metrics);

    /// For `look`.
    [[nodiscard]] static bool isFolder(const ItemFacts& facts) { return facts.kind == ItemFacts::Kind::folder; }

private:
    const ScanEnvironment& environment_;
    ScanWorkers& workers_;
    ScanBudget& budget_;
};

} // namespace vantry
