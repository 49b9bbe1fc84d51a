#pragma once

#include "cleanup/model/CleanupScanReport.h"
#include "platform/HostSystem.h"

#include <filesystem>
#include <string>

namespace vantry {

/// What a scan found, as text for a terminal; ends with a line break. Paths below `home` begin with "~". Control and
/// bidirectional formatting characters in names are escaped, and bytes that are not UTF-8 become replacement
/// characters. Except for names and paths, no line is longer than 80 columns. On Linux, categories without a place are
/// left out. `colored` adds escape sequences for colours.
[[nodiscard]] std::string reportText(const CleanupScanReport& report, const std::filesystem::path& home, bool colored,
                                     HostSystem system);

/// The same as one line of JSON; docs/report.md describes it.
[[nodiscard]] std::string reportJson(const CleanupScanReport& report);

} // namespace vantry
