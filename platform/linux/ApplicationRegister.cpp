#include "platform/ApplicationRegister.h"

namespace vantry {

ApplicationRegister applicationRegister() { return {}; }

} // namespace vantry
