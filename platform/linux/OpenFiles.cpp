#include "platform/OpenFiles.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <string>
#include <system_error>

namespace vantry {

// In the order of the descriptor numbers.
std::vector<std::filesystem::path> openFilesOfProcess(int process) {
    std::map<int, std::filesystem::path> files;
    std::error_code error;
    std::filesystem::directory_iterator entry("/proc/" + std::to_string(process) + "/fd", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().native();
        int descriptor = 0;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        std::error_code ignored; // it was closed in between
        if (auto file = std::filesystem::read_symlink(entry->path(), ignored); file.is_absolute())
            files.emplace(descriptor, std::move(file));
    }
    std::vector<std::filesystem::path> paths;
    for (auto& [descriptor, file] : files)
        paths.push_back(std::move(file));
    return paths;
}

} // namespace vantry
