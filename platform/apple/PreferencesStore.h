#pragma once

#include "platform/PreferencesStore.h"

#include <memory>

namespace vantry {

/// The standard user defaults. A key or a value that is no UTF-8 counts as missing and is not written.
[[nodiscard]] std::shared_ptr<PreferencesStore> makePreferencesStore();

} // namespace vantry
