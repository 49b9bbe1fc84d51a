#include "platform/HostSystem.h"

#include "platform/SystemWords.h"

#include <algorithm>

namespace vantry {

std::string inWordsOf(HostSystem system, std::string_view textForMacOS) {
    const auto* const row = std::ranges::find(systemWords, textForMacOS, &SystemWords::macOS);
    return std::string(system == HostSystem::macOS || row == systemWords.end() ? textForMacOS : row->linuxDesktop);
}

} // namespace vantry
