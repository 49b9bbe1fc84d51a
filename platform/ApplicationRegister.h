#pragma once

#include <functional>
#include <string>

namespace vantry {

/// Whether the system knows an application with this bundle identifier, wherever it is installed; also true when
/// that cannot be determined. Blocking; any thread.
using ApplicationRegister = std::function<bool(const std::string& bundleIdentifier)>;

/// The system's register: Launch Services on macOS, empty on Linux, which has none.
[[nodiscard]] ApplicationRegister applicationRegister();

} // namespace vantry
