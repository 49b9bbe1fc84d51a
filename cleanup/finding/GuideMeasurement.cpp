#include "cleanup/finding/GuideMeasurement.h"

#include "base/Text.h"
#include "cleanup/finding/OldFileFinders.h"
#include "cleanup/finding/UsageMeasurement.h"
#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/GuidePlaces.h"
#include "platform/DirectoryWalk.h"
#include "platform/ItemFacts.h"
#include "platform/TrashRetention.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

namespace fs = std::filesystem;
using Kind = CleanupAvenue::Place::Kind;

constexpr std::chrono::days oldEnough{30}; // for a cache that no app seems to use
const std::array<std::string, 3> imageEndings{".qcow2", ".vdi", ".vmdk"};
constexpr std::array flatpakFolders{"/var/lib/flatpak/app", "~/.local/share/flatpak/app"};

bool isFolder(const fs::path& path) {
    const auto facts = readItemFacts(path);
    return facts && facts->kind == ItemFacts::Kind::folder;
}

// Measures the places of one avenue.
class Measurement {
public:
    Measurement(ScanWorkers& workers, const CleanupPlaces& places, SystemTime now, Deadline deadline)
        : workers_(workers),
          places_(places),
          now_(now),
          deadline_(deadline) {}

    void measure(const CleanupAvenue::Place& place) {
        const auto path = pathOf(place.path);
        switch (place.kind) {
        case Kind::whole: return measureMatches("/", path.relative_path());
        case Kind::diskImages: return measureDiskImages(path);
        case Kind::oldCaches: return measureOldCaches(path);
        case Kind::leftBehind: return measureLeftBehind(path);
        }
    }

    [[nodiscard]] GuideUsage take() {
        if (missedSomething_ || sawUnreadable_)
            amounts_.push_back(CleanupByteAmount::unavailable());
        GuideUsage usage{.occupied = combineAmounts(amounts_), .paths = std::move(paths_)};
        if (usage.occupied.knownBytes() && !usage.paths.empty())
            usage.state = usage.occupied.isExact() ? CleanupScanState::checked : CleanupScanState::limited;
        else if (sawUnreadable_)
            usage.state = CleanupScanState::permissionNeeded;
        else if (missedSomething_ || !usage.paths.empty())
            usage.state = CleanupScanState::unavailable;
        else if (isLinked_)
            usage.state = CleanupScanState::relocated;
        return usage;
    }

private:
    [[nodiscard]] fs::path pathOf(std::string_view pattern) const {
        return pattern.starts_with('/') ? places_.root / pattern.substr(1) : expandedPlace(pattern, places_.home);
    }

    // The visible entries of a folder; none if it cannot be listed, and then that is noted.
    std::vector<fs::path> entries(const fs::path& folder) {
        if (!isReadable(folder))
            return {};
        auto children = workers_.shallowChildren(folder, deadline_);
        missedSomething_ = missedSomething_ || !children.complete;
        return std::move(children.urls);
    }

    bool isReadable(const fs::path& folder) {
        switch (folderAccess(folder)) {
        case FolderAccess::none: return false;
        case FolderAccess::unreadable: sawUnreadable_ = true; return false;
        case FolderAccess::readable:
        case FolderAccess::unknown: break;
        }
        return true;
    }

    // Measures what `pattern`, in which names may hold asterisks, stands for below `folder`.
    void measureMatches(const fs::path& folder, const fs::path& pattern) {
        fs::path place = folder;
        for (auto name = pattern.begin(); name != pattern.end(); ++name) {
            if (!name->native().contains('*')) {
                place /= *name;
                continue;
            }
            fs::path rest;
            for (auto later = std::next(name); later != pattern.end(); ++later)
                rest /= *later;
            for (const auto& entry : entries(place))
                // A link beside what it leads to, such as a snap's "current", would count twice.
                if (matchesPattern(entry.filename().native(), name->native()) && !isLink(entry) && !isMountPoint(entry))
                    rest.empty() ? measureWhole(entry) : measureMatches(entry, rest);
            return;
        }
        measureWhole(place);
    }

    static bool isLink(const fs::path& path) {
        const auto facts = readItemFacts(path);
        return facts && facts->kind == ItemFacts::Kind::symbolicLink;
    }

    void measureWhole(const fs::path& path) {
        const auto facts = readItemFacts(path);
        if (!facts) {
            sawUnreadable_ = sawUnreadable_ || facts.error().kind == ErrorKind::permissionDenied;
            missedSomething_ = missedSomething_ || (facts.error().kind != ErrorKind::notFound &&
                                                    facts.error().kind != ErrorKind::permissionDenied);
            return;
        }
        isLinked_ = isLinked_ || facts->kind == ItemFacts::Kind::symbolicLink;
        if (facts->kind == ItemFacts::Kind::folder ? !isReadable(path) : facts->kind != ItemFacts::Kind::regularFile)
            return;
        add(path, workers_.diskUsage(path, {}, deadline_));
    }

    void add(const fs::path& path, const DirectoryMetrics& usage) {
        if (!seen_.insert(path).second)
            return; // two patterns of one place
        paths_.push_back(path);
        amounts_.push_back(usage.complete   ? CleanupByteAmount::exact(usage.size)
                           : usage.size > 0 ? CleanupByteAmount::atLeast(usage.size)
                                            : CleanupByteAmount::unavailable());
    }

    void measureDiskImages(const fs::path& folder) {
        if (!isFolder(folder) || !isReadable(folder))
            return;
        const auto usage = workers_.diskUsage(folder, imageEndings, deadline_);
        if (usage.size > 0)
            add(folder, usage);
        else
            missedSomething_ = missedSomething_ || !usage.complete;
    }

    void measureOldCaches(const fs::path& caches) {
        if (!isFolder(caches))
            return;
        const auto cutoff = cutoffDate(now_, oldEnough);
        for (const auto& entry : entries(caches)) {
            const auto name = entry.filename().native();
            const auto facts = readItemFacts(entry);
            if (!facts || isMountPoint(entry) ||
                std::ranges::any_of(cachesOfOthers(), [&](auto pattern) { return matchesPattern(name, pattern); }))
                continue;
            auto newest = facts->contentModificationDate;
            if (facts->kind == ItemFacts::Kind::folder) {
                const auto inside = workers_.directoryMetrics(entry, deadline_);
                if (!inside.complete) {
                    missedSomething_ = true; // something in it may be new
                    continue;
                }
                newest = std::max(newest, inside.newestModificationDate);
            }
            if (newest && *newest < cutoff)
                measureWhole(entry);
        }
    }

    // Only where it is known what is installed.
    void measureLeftBehind(const fs::path& data) {
        std::set<std::string> installed;
        bool knowsSome = false;
        for (const auto* pattern : flatpakFolders) {
            const auto folder = pathOf(pattern);
            if (folderAccess(folder) == FolderAccess::none)
                continue;
            const bool before = std::exchange(missedSomething_, false);
            for (const auto& application : entries(folder))
                installed.insert(application.filename().native());
            if (sawUnreadable_ || missedSomething_)
                return;
            missedSomething_ = before;
            knowsSome = true;
        }
        if (!knowsSome || !isFolder(data))
            return;
        for (const auto& application : entries(data))
            if (!installed.contains(application.filename().native()) && isFolder(application))
                for (const char* part : {"data", "config"})
                    measureWhole(application / part);
    }

    ScanWorkers& workers_;
    const CleanupPlaces& places_;
    SystemTime now_;
    Deadline deadline_;
    std::vector<CleanupByteAmount> amounts_;
    std::vector<fs::path> paths_;
    std::set<fs::path> seen_;
    bool sawUnreadable_ = false;
    bool isLinked_ = false; ///< to another place, which is not followed
    bool missedSomething_ = false;
};

} // namespace

std::map<std::string, GuideUsage> measureGuide(ScanWorkers& workers, const CleanupPlaces& places, SystemTime now,
                                               Deadline deadline, const std::function<bool()>& isWanted) {
    std::map<std::string, GuideUsage> guide;
    for (const auto& avenue : CleanupAvenue::catalog(places.system)) {
        if (avenue.places.empty())
            continue;
        Measurement measurement(workers, places, now, deadline);
        for (const auto& place : avenue.places) {
            if (!isWanted())
                return guide;
            measurement.measure(place);
        }
        guide.emplace(avenue.identifier, measurement.take());
    }
    return guide;
}

std::map<std::string, GuideUsage> measureGuide(const ScanEnvironment& environment,
                                               const std::function<bool()>& isWanted) {
    constexpr std::chrono::seconds longest{15};
    WorkerHost workers(environment.workers);
    auto guide = measureGuide(workers, environment.places, environment.now(), deadlineIn(longest), isWanted);
    if (const auto trash = guide.find("trash"); trash != guide.end())
        if (const auto kept = trashRetention())
            trash->second.note = "GNOME deletes what has been in it for " +
                                 countText(static_cast<std::size_t>(kept->count()), "day") + ".";
    return guide;
}

} // namespace vantry::CleanupScanner
