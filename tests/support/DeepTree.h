#pragma once

#include "base/UniqueFd.h"

#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

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

/// Removes all that stands in `root`, however deep: by descriptor, as no path is that long.
inline void removeDeepTree(const std::filesystem::path& root) {
    struct Level {
        std::string name;
        std::vector<std::string> folders; ///< in it, still to be removed
    };
    const auto enter = [](UniqueFd& folder, const char* name) {
        folder.reset(openat(folder.get(), name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!folder)
            throw std::runtime_error(std::string("cannot open ") + name);
    };
    // Removes all but the folders, and names those.
    const auto sweep = [](const UniqueFd& folder) {
        DIR* stream = fdopendir(dup(folder.get()));
        if (!stream)
            throw std::runtime_error("cannot read a folder");
        std::vector<std::string> names;
        while (const dirent* entry = readdir(stream))
            if (const std::string name = entry->d_name; name != "." && name != "..")
                names.push_back(name);
        closedir(stream);
        std::erase_if(names, [&](const auto& name) { return unlinkat(folder.get(), name.c_str(), 0) == 0; });
        return names;
    };
    UniqueFd folder(open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::vector<Level> levels{{"", sweep(folder)}};
    for (;;) {
        if (auto& left = levels.back().folders; !left.empty()) {
            Level next{left.back(), {}};
            left.pop_back();
            enter(folder, next.name.c_str());
            next.folders = sweep(folder);
            levels.push_back(std::move(next));
            continue;
        }
        if (levels.size() == 1)
            return;
        enter(folder, "..");
        if (unlinkat(folder.get(), levels.back().name.c_str(), AT_REMOVEDIR) != 0)
            throw std::runtime_error("cannot remove " + levels.back().name);
        levels.pop_back();
    }
}

} // namespace vantry
