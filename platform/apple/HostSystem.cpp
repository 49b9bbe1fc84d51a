#include "platform/HostSystem.h"

namespace vantry {

HostSystem hostSystem() { return HostSystem::macOS; }

} // namespace vantry
