#pragma once

#include "cleanup/scan/PropertyListPayload.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace vantry::CleanupScanner {

/// The bytes of `file`. Absent for what is no regular file, a link among them, cannot be read or is larger than a
/// property list may be. Neither waits for a fifo nor opens a device that stands there. Blocking, as long as a file
/// system does not answer: for a worker.
[[nodiscard]] std::optional<std::string> contentsOfPropertyListFile(const std::filesystem::path& file);

/// The texts under `keys` of the property list in `file`, see platform/PropertyList.h. Nothing for what has no
/// contents, as above. Blocking in the same way.
[[nodiscard]] PropertyListPayload textsOfPropertyListFile(const std::filesystem::path& file,
                                                          std::span<const std::string> keys);

} // namespace vantry::CleanupScanner
