#pragma once

#include "storage/StorageSnapshot.h"

#include <string>

namespace vantry {

/// A volume's figures for a person at a terminal; ends with a line break.
[[nodiscard]] std::string statusText(const StorageSnapshot& snapshot);

/// The same as one line of JSON: "volumeName", "totalBytes", "usedBytes", "availableBytes", "totalText", "usedText",
/// "availableText", "usedFraction", "updatedAt" (ISO 8601, UTC). A name that is no UTF-8 gets replacement characters.
[[nodiscard]] std::string statusJson(const StorageSnapshot& snapshot);

} // namespace vantry
