#include "platform/OpenFiles.h"

#include "platform/LsofOutput.h"
#include "platform/SupervisedChild.h"

#include <chrono>
#include <cstddef>
#include <string>

namespace vantry {

namespace {

constexpr std::chrono::seconds longestListing{2};
constexpr std::size_t largestOutput = 16 << 20;
constexpr int incomplete = 1; // the status of lsof when something could not be listed

} // namespace

std::vector<std::filesystem::path> openFilesOfProcess(int process) {
    const auto output = programOutput("/usr/sbin/lsof", {"-Fn", "-p", std::to_string(process)}, largestOutput,
                                      deadlineIn(longestListing), incomplete);
    return output ? pathsInLsofOutput(*output) : std::vector<std::filesystem::path>();
}

} // namespace vantry
