#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace vantry {

/// What is fed with made-up bytes: code that reads what somebody else may have written.
struct FuzzTarget {
    const char* name; ///< also of its folder in corpus/
    void (*run)(std::string_view bytes);
};

/// Each ends the process when what it tests does something that it must not do, whatever the bytes.
[[nodiscard]] std::vector<FuzzTarget> fuzzTargets();

/// Those among them that only this system has.
[[nodiscard]] std::vector<FuzzTarget> systemFuzzTargets();

inline void requireThat(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

} // namespace vantry
