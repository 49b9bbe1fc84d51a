#pragma once

#include <filesystem>
#include <sys/mount.h>

namespace vantry {

/// A folder in which an empty file system of its own is mounted, if this process may do that (on Linux).
class MountedFolder {
public:
    explicit MountedFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
        std::filesystem::create_directory(folder_);
#ifdef __linux__
        isMounted_ = mount("none", folder_.c_str(), "tmpfs", 0, "size=1m") == 0;
#endif
    }
    MountedFolder(const MountedFolder&) = delete;
    MountedFolder& operator=(const MountedFolder&) = delete;
    ~MountedFolder() {
#ifdef __linux__
        if (isMounted_)
            umount2(folder_.c_str(), MNT_DETACH);
#endif
    }

    [[nodiscard]] explicit operator bool() const { return isMounted_; }

private:
    std::filesystem::path folder_;
    bool isMounted_ = false;
};

} // namespace vantry
