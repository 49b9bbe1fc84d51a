#include "cleanup/move/CleanupHistory.h"

#include "base/AtomicFile.h"
#include "base/Format.h"
#include "base/UniqueFd.h"
#include "base/Uuid.h"
#include "base/WriteAll.h"
#include "platform/ExchangeFiles.h"
#include "platform/ItemFacts.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
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
constexpr std::chrono::hours draftLifetime{1};            // another process may still write a younger one

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

// On failure the folder cannot be opened afterwards.
void makeFolders(const std::filesystem::path& home, const std::filesystem::path& folder) {
    auto path = home;
    for (const auto& name : folder.lexically_relative(home)) {
        path /= name;
        mkdir(path.c_str(), folderMode);
    }
}

bool isReady(const std::filesystem::path& home, const std::filesystem::path& folder) {
    makeFolders(home, folder);
    const UniqueFd fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat facts = {};
    return fd && fstat(fd.get(), &facts) == 0 && facts.st_uid == geteuid() && fchmod(fd.get(), folderMode) == 0;
}

// The previous version becomes the draft of the next one: creating and deleting a file for each version would cost more
// than everything else.
bool exchangeForNextVersion(const std::filesystem::path& file, std::string_view json) {
    const auto draft = draftOf(file);
    const UniqueFd fd(open(draft.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, recordMode));
    struct stat facts = {};
    if (!fd || fstat(fd.get(), &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_nlink != 1)
        return false;
    const auto length = static_cast<off_t>(json.size());
    if (fchmod(fd.get(), recordMode) != 0 || writeAll(fd.get(), json) != 0 ||
        (facts.st_size > length && ftruncate(fd.get(), length) != 0))
        return false;
    return exchangeFiles(draft, file) == 0 || rename(draft.c_str(), file.c_str()) == 0;
}

/// How long a file of this name is kept; absent if it is not one of ours.
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
    // Written after each moved file: a JSON library would take a fifth of the time of the move.
    std::string entries;
    for (const auto& entry : entriesOf(candidates))
        entries += formatted("{}\n    {{\n      \"bytes\": {},\n      \"category\": \"{}\"\n    }}",
                             entries.empty() ? "" : ",", entry.bytes, entry.category);
    return formatted(
        "{{\n  \"entries\": [{}\n  ],\n  \"itemCount\": {},\n  \"movedAt\": \"{}\",\n  \"totalBytes\": {}\n}}", entries,
        candidates.size(), iso8601Text(now), *total);
}

CleanupRecord CleanupRecord::startedAt(SystemTime movedAt) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(movedAt.time_since_epoch()).count();
    return {movedAt, "cleanup-" + std::to_string(seconds) + "-" + randomUuid().substr(0, 8) + ".json"};
}

bool saveHistory(std::span<const CleanupCandidate> candidates, const std::filesystem::path& home,
                 const CleanupRecord& record, RecordVersion version) {
    const auto json = cleanupHistoryJson(candidates, record.movedAt);
    const auto folder = cleanupHistoryFolder(home);
    if (!json || !isReady(home, folder))
        return false;
    const auto file = folder / record.fileName;
    if (version == RecordVersion::interim)
        return exchangeForNextVersion(file, *json);
    if (!writeFileAtomically(file, *json, recordMode))
        return false;
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
        unlink(file.c_str()); // on failure, the next move tries again
}

} // namespace vantry
