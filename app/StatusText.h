#pragma once

#include "storage/StorageSnapshot.h"

#include <string>

namespace vantry {

/// A volume's figures as text for a terminal; ends with a line break.
[[nodiscard]] std::string statusText(const StorageSnapshot& snapshot);

/// The same as one line of JSON: "volumeName", "totalBytes", "usedBytes", "availableBytes", "totalText", "usedText",
/// "availableText", "usedFraction", "updatedAt" (ISO 8601, UTC). Bytes of the name that are not UTF-8 become
/// replacement characters.
[[nodiscard]] std::string statusJson(const StorageSnapshot& snapshot);

} // namespace vantry
