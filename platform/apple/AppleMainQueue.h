#pragma once

#include "platform/MainQueue.h"

#include <memory>

namespace vantry {

/// The main dispatch queue and the main run loop. What is posted and repeated also runs while a menu or a modal window
/// has the run loop. Any thread.
[[nodiscard]] std::shared_ptr<MainQueue> makeMainQueue();

} // namespace vantry
