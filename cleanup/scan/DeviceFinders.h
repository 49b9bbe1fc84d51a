#pragma once

#include "cleanup/scan/ScanContext.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vantry::CleanupScanner {

/// Superseded backups of devices, then downloaded updates for them.
[[nodiscard]] std::vector<CleanupCandidate> deviceCandidates(ScanContext& context);

/// Every backup for which a newer one of the same device is there. Of backups with equal dates none is newer.
[[nodiscard]] std::vector<CleanupCandidate> supersededDeviceBackups(ScanContext& context);

/// Which device a backup is of: what its "Info.plist" says, whose texts are `information`, else the begin of its
/// folder's name; absent where neither tells.
[[nodiscard]] std::optional<std::string>
deviceBackupIdentity(const std::filesystem::path& backup,
                     const std::optional<std::map<std::string, std::string>>& information);

} // namespace vantry::CleanupScanner
