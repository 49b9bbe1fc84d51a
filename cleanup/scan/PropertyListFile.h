#pragma once

#include "cleanup/scan/PropertyListPayload.h"

#include <filesystem>
#include <span>
#include <string>

namespace vantry::CleanupScanner {

/// The texts under `keys` of the property list in `file`, see platform/PropertyList.h. Nothing for what is no regular
/// file, a link among them, cannot be read or is too large. Neither waits for a fifo nor opens a device that stands
/// there. Blocking, as long as a file system does not answer: for a worker.
[[nodiscard]] PropertyListPayload textsOfPropertyListFile(const std::filesystem::path& file,
                                                          std::span<const std::string> keys);

} // namespace vantry::CleanupScanner
