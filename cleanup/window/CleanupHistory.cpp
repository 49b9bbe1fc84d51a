#include "cleanup/window/CleanupHistory.h"

#include "base/AtomicFile.h"
#include "base/UniqueFd.h"
#include "base/Uuid.h"
#include "platform/ItemFacts.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

constexpr mode_t folderMode = 0700;
constexpr mode_t recordMode = 0600;
constexpr std::chrono::seconds recordLifetime{7'776'000}; // 90 days
constexpr std::chrono::hours draftLifetime{1};            // a younger one may be another process at work

/// One moved item.
struct Entry {
    std::string_view category;
    std::int64_t bytes;
};

std::vector<Entry> entriesOf(std::span<const CleanupCandidate> candidates) {
    std::vector<Entry> entries;
    for (const auto& candidate : candidates)
        entries.push_back({rawValue(candidate.category), candidate.size});
    std::ranges::stable_sort(entries, {}, &Entry::category);
    return entries;
}

std::optional<std::int64_t> totalBytes(std::span<const CleanupCandidate> candidates) {
    std::int64_t total = 0;
    for (const auto& candidate : candidates)
        if (__builtin_add_overflow(total, candidate.size, &total))
            return std::nullopt;
    return total;
}

bool makeFolder(const std::filesystem::path& home, const std::filesystem::path& folder) {
    auto path = home;
    for (const auto& name : folder.lexically_relative(home)) {
        path /= name;
        if (mkdir(path.c_str(), folderMode) != 0 && errno != EEXIST)
            return false;
    }
    const UniqueFd fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat facts = {};
    return fd && fstat(fd.get(), &facts) == 0 && facts.st_uid == geteuid() && fchmod(fd.get(), folderMode) == 0;
}

/// How long a file of this name is kept; absent for a name that is not one of ours.
std::optional<std::chrono::seconds> lifetimeOf(const std::filesystem::path& file) {
    const std::string name = file.filename().native();
    if (name.starts_with(".cleanup") && name.ends_with(".json.new"))
        return draftLifetime;
    if (!name.starts_with('.') && file.extension() == ".json")
        return recordLifetime;
    return std::nullopt;
}

bool isTooOld(const std::filesystem::path& file, SystemTime now) {
    const auto lifetime = lifetimeOf(file);
    if (!lifetime)
        return false;
    const auto facts = readItemFacts(file);
    return facts && facts->kind == ItemFacts::Kind::regularFile && facts->contentModificationDate &&
           *facts->contentModificationDate < now - *lifetime;
}

} // namespace

std::filesystem::path cleanupHistoryFolder(const std::filesystem::path& home) {
    return home / "Library/Application Support/Ombrel/Cleanup History";
}

std::optional<std::string> cleanupHistoryJson(std::span<const CleanupCandidate> candidates, SystemTime now) {
    const auto total = totalBytes(candidates);
    if (!total)
        return std::nullopt;
    nlohmann::json record = {{"movedAt", iso8601Text(now)},
                             {"itemCount", candidates.size()},
                             {"totalBytes", *total},
                             {"entries", nlohmann::json::array()}};
    for (const auto& entry : entriesOf(candidates))
        record["entries"].push_back({{"category", entry.category}, {"bytes", entry.bytes}});
    return record.dump(2);
}

CleanupRecord CleanupRecord::startedAt(SystemTime movedAt) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(movedAt.time_since_epoch()).count();
    return {movedAt, "cleanup-" + std::to_string(seconds) + "-" + randomUuid().substr(0, 8) + ".json"};
}

bool saveHistory(std::span<const CleanupCandidate> candidates, const std::filesystem::path& home,
                 const CleanupRecord& record, RecordVersion version) {
    const bool isLast = version == RecordVersion::last;
    const auto json = cleanupHistoryJson(candidates, record.movedAt);
    const auto folder = cleanupHistoryFolder(home);
    if (!json || !makeFolder(home, folder) ||
        !writeFileAtomically(folder / record.fileName, *json, recordMode,
                             isLast ? Durability::synced : Durability::unsynced))
        return false;
    if (isLast)
        pruneCleanupHistory(folder, record.movedAt);
    return true;
}

void pruneCleanupHistory(const std::filesystem::path& folder, SystemTime now) {
    std::error_code error;
    std::vector<std::filesystem::path> old;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (isTooOld(entry->path(), now))
            old.push_back(entry->path());
    for (const auto& file : old)
        unlink(file.c_str()); // one that cannot be removed is tried again after the next move
}

} // namespace vantry
