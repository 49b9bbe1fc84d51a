#pragma once

#include "cleanup/measuring/PropertyListPayload.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace vantry::CleanupScanner {

/// The bytes of `file`. Absent unless it is a regular file, no link, that can be read and is no larger than a property
/// list may be. Neither waits for a fifo nor opens a device. Blocks for as long as a file system does not answer: call
/// it in a worker.
[[nodiscard]] std::optional<std::string> contentsOfPropertyListFile(const std::filesystem::path& file);

/// The texts under `keys` of the property list in `file`, see platform/PropertyList.h; none if `file` has no bytes as
/// above. Blocks likewise.
[[nodiscard]] PropertyListPayload textsOfPropertyListFile(const std::filesystem::path& file,
                                                          std::span<const std::string> keys);

} // namespace vantry::CleanupScanner
