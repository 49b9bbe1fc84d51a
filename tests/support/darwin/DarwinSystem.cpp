#include "tests/support/darwin/DarwinSystem.h"

#include <cerrno>
#include <sys/stat.h>
#include <system_error>

namespace vantry {

DarwinSystem& DarwinSystem::get() {
    static DarwinSystem system;
    return system;
}

void DarwinSystem::reset() { get() = {}; }

void DarwinSystem::setFlags(const std::filesystem::path& path, std::uint32_t flags) {
    struct stat facts = {};
    if (lstat(path.c_str(), &facts) != 0)
        throw std::system_error(errno, std::system_category(), path);
    flags_[{facts.st_dev, facts.st_ino}] = flags;
}

std::uint32_t DarwinSystem::flagsOf(dev_t device, ino_t inode) const {
    const auto found = flags_.find({device, inode});
    return found == flags_.end() ? 0 : found->second;
}

} // namespace vantry
