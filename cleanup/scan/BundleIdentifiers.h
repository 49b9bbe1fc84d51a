#pragma once

#include "base/Deadline.h"
#include "cleanup/scan/BundleSearch.h"
#include "platform/StopSwitch.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vantry::CleanupScanner {

// The worker that looks for bundles writes a `PropertyListPayload` for each one that says what it is called, and one
// without texts now and then as a sign of life. A last line says that nothing was left out; it is missing otherwise.

/// The worker's side: calls `write` with one line or more at a time until that fails. Blocking, as long as a file
/// system does not answer.
void writeBundleIdentifiers(const ApplicationPlaces& places, const std::function<bool(std::string_view)>& write);

/// The parent's side: has it done by one worker of `executable`. Absent when something that may be a bundle could not
/// be looked at, when the worker does what it should not, and when it shows no sign of life for a second. Blocking,
/// until `deadline` and what it takes to end a worker at most, or until `stopSwitch`, which may be null, is stopped.
[[nodiscard]] std::optional<std::set<std::string>> readBundleIdentifiers(const std::filesystem::path& executable,
                                                                         const ApplicationPlaces& places,
                                                                         Deadline deadline,
                                                                         const std::shared_ptr<StopSwitch>& stopSwitch);

} // namespace vantry::CleanupScanner
