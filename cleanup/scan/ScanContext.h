#pragma once

#include "base/Deadline.h"
#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/scan/ScanEnvironment.h"
#include "cleanup/scan/ScanWorkers.h"
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
    Deadline deadline;                           ///< after which finders stop and return what they have
    std::set<CleanupCategory> limitedCategories; ///< whose finder stopped early or left something out; only grows
    std::set<std::string> incompletePaths = {};  ///< ids of candidates that were not measured to the end; only grows
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
    /// Whether time is up; if so the category is limited.
    [[nodiscard]] bool isOver(CleanupCategory category);
    /// The visible entries of `folder`; absent, with the category limited, when the listing is not complete.
    [[nodiscard]] std::optional<std::vector<std::filesystem::path>> listed(const std::filesystem::path& folder,
                                                                           CleanupCategory category);
    /// The same with no entries instead.
    [[nodiscard]] std::vector<std::filesystem::path> list(const std::filesystem::path& folder,
                                                          CleanupCategory category);
    /// What stands at `url`, if it `isWanted`, with what identifies it, from one look. Absent also when there is
    /// nothing or, with the category limited, when that cannot be found out.
    [[nodiscard]] std::optional<FoundItem> look(const std::filesystem::path& url, CleanupCategory category,
                                                const std::function<bool(const ItemFacts&)>& isWanted);
    /// Measures what is in `folder` at once, as far as that takes no longer than one measurement, so that to measure
    /// one folder after the other there, and all of it, costs nothing more.
    void measureAhead(const std::filesystem::path& folder);
    /// Measures `folder`. A measurement that is not complete limits the category; absent when nothing was measured.
    [[nodiscard]] std::optional<DirectoryMetrics> measure(const std::filesystem::path& folder,
                                                          CleanupCategory category);
    /// The texts under `keys` in each file. Limits the category when time did not suffice for all of them.
    [[nodiscard]] PropertyListTexts read(std::span<const std::filesystem::path> files,
                                         std::span<const std::string> keys, CleanupCategory category);

    /// What the bundles in `places` call themselves; absent, with the category limited, when not all are known.
    [[nodiscard]] std::optional<std::set<std::string>>
    bundleIdentifiers(const CleanupScanner::ApplicationPlaces& places, CleanupCategory category);

    /// A candidate, scanned at this moment: low risk exactly where its category may go to the Trash. A size that is not
    /// `complete` is remembered as a lower bound.
    [[nodiscard]] CleanupCandidate candidate(const std::filesystem::path& url, const FileFingerprint& fingerprint,
                                             std::string title, CleanupCategory category, std::string_view reason,
                                             const DirectoryMetrics& metrics);

    /// What is wanted of many items.
    [[nodiscard]] static bool isFolder(const ItemFacts& facts) { return facts.kind == ItemFacts::Kind::folder; }

private:
    const ScanEnvironment& environment_;
    ScanWorkers& workers_;
    ScanBudget& budget_;
};

} // namespace vantry
