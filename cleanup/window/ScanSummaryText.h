#pragma once

#include "cleanup/model/CleanupScanReport.h"

#include <string>

namespace vantry {

/// What a scan found, in one line. It opens with "Scan complete" when it has nothing to tell that is missing.
[[nodiscard]] std::string scanSummaryText(const CleanupScanReport& report);

} // namespace vantry
