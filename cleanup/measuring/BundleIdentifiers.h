#pragma once

#include "base/Deadline.h"
#include "cleanup/measuring/BundleSearch.h"
#include "platform/StopSwitch.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vantry::CleanupScanner {

// The bundle worker writes a `PropertyListPayload` for each bundle that has an identifier, and now and then one without
// texts as a sign of life. A last line says that nothing was left out; otherwise it is missing.

/// The worker's side: searches, and passes what it found to `write`, whole lines at a time, whenever they have 16 KiB.
/// After each visited folder it also writes if 100 ms of `now` have passed since the last time, so that the parent sees
/// that it is alive. Ends when `write` fails. Blocks for as long as a file system does not answer.
void writeBundleIdentifiers(
    const ApplicationPlaces& places, const std::function<bool(std::string_view)>& write,
    const std::function<std::chrono::steady_clock::time_point()>& now = std::chrono::steady_clock::now);

/// The parent's side: starts one worker of `executable`. Absent if something that may be a bundle could not be read, if
/// the worker misbehaves, or if it gives no sign of life for a second. Blocks at most until `deadline`, plus the time
/// to end a worker, or until `stopSwitch`, which may be null, is stopped.
[[nodiscard]] std::optional<std::set<std::string>> readBundleIdentifiers(const std::filesystem::path& executable,
                                                                         const ApplicationPlaces& places,
                                                                         Deadline deadline,
                                                                         const std::shared_ptr<StopSwitch>& stopSwitch);

} // namespace vantry::CleanupScanner
