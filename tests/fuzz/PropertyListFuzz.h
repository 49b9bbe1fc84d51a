#pragma once

#include <string_view>

namespace vantry {

/// The fuzz target for property lists and for what a worker says about them.
void readPropertyList(std::string_view bytes);

} // namespace vantry
