#include "platform/LsofOutput.h"

#include <algorithm>

namespace vantry {

std::vector<std::filesystem::path> pathsInLsofOutput(std::string_view output) {
    std::vector<std::filesystem::path> paths;
    while (!output.empty()) {
        const auto line = output.substr(0, output.find('\n'));
        if (line.size() > 1 && line.front() == 'n')
            paths.emplace_back(line.substr(1));
        output.remove_prefix(std::min(line.size() + 1, output.size()));
    }
    return paths;
}

} // namespace vantry
