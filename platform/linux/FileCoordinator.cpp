#include "platform/FileCoordinator.h"

namespace vantry {

namespace {

// Without a slash at its end.
std::filesystem::path normalPath(const std::filesystem::path& path) {
    auto normal = path.lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();
}

} // namespace

Result<void> coordinateMoving(const std::filesystem::path& file,
                              const std::function<void(const std::filesystem::path&)>& accessor) {
    accessor(file);
    return {};
}

bool isSamePlace(const std::filesystem::path& one, const std::filesystem::path& other) {
    return one.is_absolute() && normalPath(one) == normalPath(other);
}

} // namespace vantry
