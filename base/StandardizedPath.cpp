#include "base/StandardizedPath.h"

namespace vantry {

std::filesystem::path standardizedPath(const std::filesystem::path& path) {
    const std::filesystem::path normal = path.lexically_normal();
    if (normal.has_root_directory() && !normal.has_relative_path())
        return "/"; // also for "///", which lexically_normal() keeps
    return normal.has_filename() ? normal : normal.parent_path();
}

} // namespace vantry
