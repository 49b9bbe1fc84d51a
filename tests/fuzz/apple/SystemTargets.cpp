#include "tests/fuzz/Targets.h"

namespace vantry {

std::vector<FuzzTarget> systemFuzzTargets() { return {}; }

} // namespace vantry
