// What macOS 13.0 has stands between these two; what came later says so with SDK_AVAILABLE_FROM. See README.md.
#pragma once
#define SDK_IN_13_BEGIN \
  _Pragma("clang attribute push(__attribute__((availability(macos, introduced = 13.0))), apply_to = any(enum, enum_constant, function, objc_category, objc_interface, objc_method, objc_property, objc_protocol, record, type_alias, variable))")
#define SDK_IN_13_END _Pragma("clang attribute pop")
#define SDK_AVAILABLE_FROM(version) __attribute__((availability(macos, introduced = version)))
