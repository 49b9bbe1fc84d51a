#pragma once

#include "cleanup/finding/ScanContext.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vantry::CleanupScanner {

/// Superseded device backups, then downloaded device updates.
[[nodiscard]] std::vector<CleanupCandidate> deviceCandidates(ScanContext& context);

/// Every backup that has a newer one of the same device. Backups with equal dates do not supersede each other.
[[nodiscard]] std::vector<CleanupCandidate> supersededDeviceBackups(ScanContext& context);

/// Identifies the device of a backup: by the texts of its Info.plist in `information`, else by the start of its
/// folder's name; absent where neither tells.
[[nodiscard]] std::optional<std::string>
deviceBackupIdentity(const std::filesystem::path& backup,
                     const std::optional<std::map<std::string, std::string>>& information);

} // namespace vantry::CleanupScanner
