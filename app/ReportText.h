#pragma once

#include "cleanup/model/CleanupScanReport.h"

#include <filesystem>
#include <string>

namespace vantry {

/// What a scan found, for a person at a terminal; ends with a line break. Paths below `home` begin with "~". Control
/// characters in names, and those that set the direction of writing, are shown escaped, bytes that are no UTF-8 as
/// replacement characters. `colored`: with the
/// terminal's escape sequences for colours.
[[nodiscard]] std::string reportText(const CleanupScanReport& report, const std::filesystem::path& home, bool colored);

/// The same as one line of JSON; docs/report.md describes it.
[[nodiscard]] std::string reportJson(const CleanupScanReport& report);

} // namespace vantry
