#include "cleanup/window/CleanupServices.h"

namespace vantry {

CleanupServices systemCleanupServices() { return {}; }

} // namespace vantry
