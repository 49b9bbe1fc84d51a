#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace vantry {

/// How many descriptors this process has open.
[[nodiscard]] inline std::ptrdiff_t openDescriptorCount() {
    return std::distance(std::filesystem::directory_iterator("/dev/fd"), {}) - 1; // the iterator's own
}

} // namespace vantry
