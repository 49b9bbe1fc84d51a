#include "platform/FileCoordinator.h"

namespace vantry {

Result<void> coordinateMoving(const std::filesystem::path& file,
                              const std::function<void(const std::filesystem::path&)>& accessor) {
    accessor(file);
    return {};
}

} // namespace vantry
