#include "cleanup/finding/DeviceFinders.h"

#include "base/Utf8.h"
#include "cleanup/finding/OldFileFinders.h"
#include "cleanup/gate/SafePaths.h"
#include "cleanup/model/CleanupRules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

using Texts = std::map<std::string, std::string>;

const auto identityKeys = std::to_array<std::string>({"Target Identifier", "Unique Identifier", "GUID"});
const auto nameKeys = std::to_array<std::string>({"Device Name", "Display Name"});
constexpr std::size_t shortestIdentity = 20; // characters

struct DeviceBackupRecord {
    std::filesystem::path url;
    FileFingerprint fingerprint;
    std::string identity;
    SystemTime modificationDate;
    std::string name;
};

template <std::size_t Count>
std::optional<std::string> firstText(const std::optional<Texts>& texts, const std::array<std::string, Count>& keys) {
    for (const auto& key : keys)
        if (texts)
            if (const auto text = texts->find(key); text != texts->end() && !text->second.empty())
                return text->second;
    return std::nullopt;
}

struct BackupFolder {
    std::filesystem::path url;
    FoundItem item; ///< has a date
};

std::vector<BackupFolder> backupFolders(ScanContext& context, const std::filesystem::path& root) {
    const auto category = CleanupCategory::deviceBackup;
    std::vector<BackupFolder> folders;
    if (isSymbolicLink(root) || context.isOver(category))
        return folders;
    for (const auto& url : context.list(root, category)) {
        if (context.isOver(category))
            break;
        auto item = context.look(url, category, [](const ItemFacts& facts) {
            return ScanContext::isFolder(facts) && facts.contentModificationDate;
        });
        if (item && liesBelow(url, root))
            folders.push_back({url, std::move(*item)});
    }
    return folders;
}

std::vector<DeviceBackupRecord> backupRecords(ScanContext& context, const std::vector<BackupFolder>& folders) {
    std::vector<std::filesystem::path> files;
    for (const auto& folder : folders)
        files.push_back(folder.url / "Info.plist");
    std::vector<std::string> keys(identityKeys.begin(), identityKeys.end());
    keys.insert(keys.end(), nameKeys.begin(), nameKeys.end());
    const auto information = context.read(files, keys, CleanupCategory::deviceBackup).texts;
    std::vector<DeviceBackupRecord> records;
    for (std::size_t i = 0; i < folders.size(); ++i)
        if (auto identity = deviceBackupIdentity(folders[i].url, information[i]))
            records.push_back({folders[i].url, folders[i].item.fingerprint, std::move(*identity),
                               *folders[i].item.facts.contentModificationDate,
                               firstText(information[i], nameKeys).value_or(displayName(folders[i].url))});
    return records;
}

} // namespace

std::optional<std::string> deviceBackupIdentity(const std::filesystem::path& backup,
                                                const std::optional<Texts>& information) {
    if (auto identity = firstText(information, identityKeys))
        return identity;
    const std::string name = backup.filename().native();
    std::string begin = name.substr(0, name.find('-'));
    return characterCount(begin) < shortestIdentity ? std::nullopt : std::optional(std::move(begin));
}

std::vector<CleanupCandidate> supersededDeviceBackups(ScanContext& context) {
    const auto category = CleanupCategory::deviceBackup;
    const auto folders = backupFolders(context, approvedRoots(category, context.environment().places).front());
    if (folders.size() < 2)
        return {};
    const auto records = backupRecords(context, folders);
    std::map<std::string, SystemTime> newest;
    for (const auto& record : records) {
        const auto entry = newest.try_emplace(record.identity, record.modificationDate).first;
        entry->second = std::max(entry->second, record.modificationDate);
    }
    std::vector<CleanupCandidate> candidates;
    for (const auto& record : records) {
        if (record.modificationDate >= newest.at(record.identity))
            continue;
        if (context.isOver(category))
            break;
        if (const auto metrics = context.measure(record.url, category))
            candidates.push_back(context.candidate(
                record.url, record.fingerprint, "Older backup · " + record.name, category,
                "A newer local backup for the same device was found. Verify the newer backup before removing this one.",
                *metrics));
    }
    return candidates;
}

std::vector<CleanupCandidate> deviceCandidates(ScanContext& context) {
    auto candidates = supersededDeviceBackups(context);
    for (const auto& rule : cleanupRules(CleanupCategory::deviceSoftware, context.environment().places))
        std::ranges::move(oldRegularFiles(context, rule), std::back_inserter(candidates));
    return candidates;
}

} // namespace vantry::CleanupScanner
