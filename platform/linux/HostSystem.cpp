#include "platform/HostSystem.h"

namespace vantry {

HostSystem hostSystem() { return HostSystem::linuxDesktop; }

} // namespace vantry
