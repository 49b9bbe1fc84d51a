#include "platform/FileCoordinator.h"

#include "base/StandardizedPath.h"

namespace vantry {

Result<void> coordinateMoving(const std::filesystem::path& file,
                              const std::function<void(const std::filesystem::path&)>& accessor) {
    accessor(file);
    return {};
}

bool isSamePlace(const std::filesystem::path& one, const std::filesystem::path& other) {
    return one.is_absolute() && standardizedPath(one) == standardizedPath(other);
}

} // namespace vantry
