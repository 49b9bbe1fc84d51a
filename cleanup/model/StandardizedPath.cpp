#include "cleanup/model/StandardizedPath.h"

namespace vantry {

std::filesystem::path standardizedPath(const std::filesystem::path& path) {
    const std::filesystem::path normal = path.lexically_normal();
    if (normal.has_root_directory() && !normal.has_relative_path())
        return "/"; // also for "///", which stays as it is when made normal
    return normal.has_filename() ? normal : normal.parent_path();
}

} // namespace vantry
