#pragma once

#include <string>
#include <string_view>

namespace vantry {

/// The system that the user sees, for texts that depend on it.
enum class HostSystem { macOS, linuxDesktop };

/// The system that this program was built for.
[[nodiscard]] HostSystem hostSystem();

/// A text of the product in the words of `system`. The texts in the code are those for macOS, and some name its parts;
/// a text without a counterpart is returned unchanged. Never pass in names or paths of the user. Any thread.
[[nodiscard]] std::string inWordsOf(HostSystem system, std::string_view textForMacOS);

} // namespace vantry
