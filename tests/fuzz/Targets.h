#pragma once

#include <span>
#include <string_view>

namespace vantry {

/// What is fed with made-up bytes: code that reads what somebody else may have written.
struct FuzzTarget {
    const char* name; ///< also of its folder in corpus/
    void (*run)(std::string_view bytes);
};

/// Each ends the process when what it tests does something that it must not do, whatever the bytes.
[[nodiscard]] std::span<const FuzzTarget> fuzzTargets();

} // namespace vantry
