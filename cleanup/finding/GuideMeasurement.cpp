#include "cleanup/finding/GuideMeasurement.h"

#include "base/ByteSum.h"
#include "base/StandardizedPath.h"
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
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

namespace fs = std::filesystem;
using Kind = CleanupAvenue::Place::Kind;

constexpr std::chrono::days oldEnough{30}; // for a cache that no app seems to use
const auto imageEndings = std::to_array<std::string>({".qcow2", ".vdi", ".vmdk"});
constexpr std::string_view coreDump = "core."; // and a number
constexpr auto* userInstallation = "${FLATPAK_USER_DIR:-${XDG_DATA_HOME:-~/.local/share}/flatpak}";

// Whether one of the two lies in the other, or both are the same.
bool overlap(const fs::path& one, const fs::path& other) {
    const auto [ofOne, ofOther] = std::ranges::mismatch(one, other);
    return ofOne == one.end() || ofOther == other.end();
}

// Where a link leads, without following a second one.
fs::path targetOf(const fs::path& path) {
    const auto facts = readItemFacts(path);
    if (!facts || facts->kind != ItemFacts::Kind::symbolicLink)
        return path;
    std::error_code error;
    const auto target = fs::read_symlink(path, error);
    return error ? path : standardizedPath(path.parent_path() / target);
}

struct Task {
    ScanWorkers& workers;
    const CleanupPlaces& places;
    SystemTime now;
    Deadline latest;
    const std::function<bool()>& isWanted;

    [[nodiscard]] Deadline deadline() const { return isWanted() ? latest : Deadline::min(); }
    [[nodiscard]] fs::path pathOf(std::string_view pattern) const {
        return pattern.starts_with('/') ? places.root / pattern.substr(1) : expandedPlace(pattern, places.home);
    }
};

// Measures the places of one avenue.
class Measurement {
public:
    explicit Measurement(const Task& task) : task_(task) {}

    void measure(const CleanupAvenue::Place& place) {
        const auto path = task_.pathOf(place.path);
        switch (place.kind) {
        case Kind::whole: return measureMatches("/", path.relative_path());
        case Kind::coreDumps: return measureCoreDumps(path);
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
    // The visible entries of a folder, or of the one that a link leads to. Absent if it is missing; if it cannot be
    // listed, that is noted as well.
    std::optional<std::vector<fs::path>> listed(const fs::path& folder) {
        const auto target = targetOf(folder);
        if (!isReadable(target))
            return std::nullopt;
        auto children = task_.workers.shallowChildren(target, task_.deadline());
        missedSomething_ = missedSomething_ || !children.complete;
        return children.complete ? std::optional(std::move(children.urls)) : std::nullopt;
    }
    std::vector<fs::path> entries(const fs::path& folder) { return listed(folder).value_or(std::vector<fs::path>()); }

    // Those that can be looked up, that no avenue measures as a whole, and that are not mounted there.
    std::vector<fs::path> entriesOfNoOther(const fs::path& folder) {
        std::vector<fs::path> places;
        for (const auto& avenue : CleanupAvenue::catalog(task_.places.system))
            for (const auto& place : avenue.places)
                if (place.kind == Kind::whole)
                    places.push_back(task_.pathOf(place.path));
        auto found = entries(folder);
        std::erase_if(found, [&](const auto& entry) {
            const auto named = folder / entry.filename(); // differs if the folder is a link
            return !factsOf(entry) || isMountPoint(entry) || std::ranges::any_of(places, [&](const auto& place) {
                return overlap(entry, place) || overlap(named, place);
            });
        });
        return found;
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

    // What is at `path`; if that cannot be found out, this is noted.
    std::optional<ItemFacts> factsOf(const fs::path& path) {
        const auto facts = readItemFacts(path);
        if (facts)
            return *facts;
        if (facts.error().kind == ErrorKind::permissionDenied)
            sawUnreadable_ = true;
        else if (facts.error().kind != ErrorKind::notFound)
            missedSomething_ = true;
        return std::nullopt;
    }
    bool isA(ItemFacts::Kind kind, const fs::path& path) {
        const auto facts = factsOf(path);
        return facts && facts->kind == kind;
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
                if (matchesPattern(entry.filename().native(), name->native()) &&
                    !isA(ItemFacts::Kind::symbolicLink, entry) && !isMountPoint(entry))
                    rest.empty() ? measureWhole(entry) : measureMatches(entry, rest);
            return;
        }
        measureWhole(place);
    }

    void measureWhole(const fs::path& path) {
        const auto facts = factsOf(path);
        if (!facts)
            return;
        isLinked_ = isLinked_ || facts->kind == ItemFacts::Kind::symbolicLink;
        if (facts->kind == ItemFacts::Kind::folder ? !isReadable(path) : facts->kind != ItemFacts::Kind::regularFile)
            return;
        if (std::ranges::find(paths_, path) == paths_.end()) // else two patterns stand for it
            add(path, task_.workers.diskUsage(path, {}, task_.deadline()));
    }

    void add(const fs::path& path, const DirectoryMetrics& usage) {
        paths_.push_back(path);
        amounts_.push_back(usage.complete   ? CleanupByteAmount::exact(usage.size)
                           : usage.size > 0 ? CleanupByteAmount::atLeast(usage.size)
                                            : CleanupByteAmount::unavailable());
    }

    void measureCoreDumps(const fs::path& folder) {
        for (const auto& entry : entries(folder)) {
            const auto name = entry.filename().native();
            if (name.starts_with(coreDump) && name.size() > coreDump.size() &&
                name.find_first_not_of("0123456789", coreDump.size()) == std::string::npos &&
                isA(ItemFacts::Kind::regularFile, entry))
                measureWhole(entry);
        }
    }

    void measureDiskImages(const fs::path& folder) {
        DirectoryMetrics images{.complete = true};
        for (const auto& entry : entriesOfNoOther(folder)) {
            const auto usage = task_.workers.diskUsage(entry, imageEndings, task_.deadline());
            images.complete = addBytes(images.size, usage.size) && usage.complete && images.complete;
        }
        if (images.size > 0)
            add(folder, images);
        else
            missedSomething_ = missedSomething_ || !images.complete;
    }

    void measureOldCaches(const fs::path& caches) {
        const auto cutoff = cutoffDate(task_.now, oldEnough);
        for (const auto& entry : entriesOfNoOther(caches)) {
            const auto name = entry.filename().native();
            if (std::ranges::any_of(cachesOfOthers(), [&](auto pattern) { return matchesPattern(name, pattern); }))
                continue;
            const auto facts = factsOf(entry);
            if (!facts)
                continue;
            auto newest = facts->contentModificationDate;
            if (facts->kind == ItemFacts::Kind::folder) {
                const auto inside = task_.workers.directoryMetrics(entry, task_.deadline());
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

    // Which Flatpak applications are installed. Absent unless each installation was listed: one that is missing may
    // be on a disk that is not there.
    std::optional<std::set<fs::path>> installedApplications() {
        const auto further = task_.pathOf("/etc/flatpak/installations.d");
        if (folderAccess(further) != FolderAccess::none) {
            const auto files = listed(further);
            if (!files || !files->empty())
                return std::nullopt;
        }
        std::set<fs::path> installed;
        for (const auto* installation : {"/var/lib/flatpak", userInstallation}) {
            const auto folder = task_.pathOf(installation);
            const auto inside = listed(folder);
            if (!inside)
                return std::nullopt;
            if (std::ranges::none_of(*inside, [](const auto& entry) { return entry.filename() == "app"; }))
                continue;
            const auto applications = listed(folder / "app");
            if (!applications)
                return std::nullopt;
            for (const auto& application : *applications)
                installed.insert(application.filename());
        }
        return installed;
    }

    void measureLeftBehind(const fs::path& data) {
        const auto applications = listed(data);
        const auto installed = applications ? installedApplications() : std::nullopt;
        if (!installed)
            return;
        for (const auto& application : *applications)
            if (!installed->contains(application.filename()) && isA(ItemFacts::Kind::folder, application))
                for (const char* part : {"data", "config"})
                    measureWhole(application / part);
    }

    const Task& task_;
    std::vector<CleanupByteAmount> amounts_;
    std::vector<fs::path> paths_;
    bool sawUnreadable_ = false;
    bool isLinked_ = false; ///< to another place, which is not followed
    bool missedSomething_ = false;
};

} // namespace

std::map<std::string, GuideUsage> measureGuide(ScanWorkers& workers, const CleanupPlaces& places, SystemTime now,
                                               Deadline deadline, const std::function<bool()>& isWanted) {
    const Task task{workers, places, now, deadline, isWanted};
    std::map<std::string, Measurement> measurements;
    for (const bool searched : {false, true}) // those where nobody knows how much there is to measure come last
        for (const auto& avenue : CleanupAvenue::catalog(places.system))
            for (const auto& place : avenue.places)
                if (searched == (place.kind != Kind::whole || place.path.contains('*'))) {
                    if (!isWanted())
                        return {};
                    measurements.try_emplace(std::string(avenue.identifier), task).first->second.measure(place);
                }
    std::map<std::string, GuideUsage> guide;
    if (isWanted())
        for (auto& [identifier, measurement] : measurements)
            guide.emplace(identifier, measurement.take());
    return guide;
}

std::map<std::string, GuideUsage> measureGuide(const ScanEnvironment& environment,
                                               const std::function<bool()>& isWanted) {
    constexpr std::chrono::seconds longest{15};
    WorkerHost workers(environment.workers);
    auto guide = measureGuide(workers, environment.places, environment.now(), deadlineIn(longest), isWanted);
    if (const auto trash = guide.find("trash"); trash != guide.end())
        if (const auto kept = trashRetention(environment.workers.stopSwitch))
            trash->second.note = "GNOME deletes what has been in it for " +
                                 countText(static_cast<std::size_t>(kept->count()), "day") + ".";
    return guide;
}

} // namespace vantry::CleanupScanner
