#pragma once

#include "base/UniqueFd.h"

#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

/// The folder that is open as `folder`, or one in it that is made.
[[nodiscard]] inline UniqueFd makeFolderIn(const UniqueFd& folder, const std::string& name) {
    mkdirat(folder.get(), name.c_str(), 0700);
    UniqueFd fd(openat(folder.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd)
        throw std::runtime_error("cannot make a folder " + name);
    return fd;
}

/// An empty file.
inline void makeFileIn(const UniqueFd& folder, const std::string& name) {
    const UniqueFd fd(openat(folder.get(), name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    if (!fd)
        throw std::runtime_error("cannot make a file " + name);
}

/// Removes all that stands in `root`, however deep. What stands deep is brought up first, so that no path gets long.
inline void removeDeepTree(const std::filesystem::path& root) {
    namespace fs = std::filesystem;
    const fs::path pool = root / "pool";
    fs::create_directory(pool);
    for (const auto& entry : fs::directory_iterator(root))
        if (entry.path() != pool)
            fs::rename(entry.path(), pool / entry.path().filename());
    for (std::size_t number = 0; !fs::is_empty(pool);) {
        const fs::path folder = root / "folder";
        fs::rename(fs::directory_iterator(pool)->path(), folder);
        if (!fs::is_directory(fs::symlink_status(folder))) {
            fs::remove(folder);
            continue;
        }
        for (const auto& entry : fs::directory_iterator(folder))
            fs::rename(entry.path(), pool / ("moved " + std::to_string(number++)));
        fs::remove(folder);
    }
    fs::remove(pool);
}

} // namespace vantry
