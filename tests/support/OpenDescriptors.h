#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace vantry {

/// How many descriptors this process has open. On Linux.
[[nodiscard]] inline std::ptrdiff_t openDescriptorCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}) - 1; // the iterator's own
}

} // namespace vantry
