#include "app/CommandLine.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace vantry {

LaunchMode launchMode(std::span<const std::string> arguments) {
    static constexpr std::array<std::pair<std::string_view, LaunchMode>, 6> modes{{
        {"--help", LaunchMode::help},
        {"--version", LaunchMode::version},
        {"--status", LaunchMode::status},
        {"--status=json", LaunchMode::statusJson},
        {"--report", LaunchMode::report},
        {"--report=json", LaunchMode::reportJson},
    }};
    for (const auto& argument : arguments)
        for (const auto& [spelling, mode] : modes)
            if (argument == spelling)
                return mode;
    return LaunchMode::userInterface;
}

std::vector<std::string> runningBundleIdentifiers(std::span<const std::string> arguments) {
    std::vector<std::string> identifiers;
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i)
        if (arguments[i] == "--running")
            identifiers.push_back(arguments[++i]);
    return identifiers;
}

std::optional<InstanceRequest> requestOfSecondStart(std::span<const std::string> arguments) {
    if (std::ranges::count(arguments, "--show-cleanup") > 0)
        return InstanceRequest::showCleanup;
    if (std::ranges::count(arguments, "-session") > 0)
        return std::nullopt;
    return InstanceRequest::showPopover;
}

std::string helpText() {
    return "Usage: ombrel [OPTION]\n"
           "Shows how full the startup volume is, as a coloured bar beside the clock.\n"
           "\n"
           "  --show-cleanup   also open the \"Free Up Space\" window\n"
           "  --status         print the volume’s figures and end\n"
           "  --status=json    print them as one JSON object and end\n"
           "  --report         print what could be cleaned up in the home folder, and on\n"
           "                   Linux what the caches and stores of programs hold, and end;\n"
           "                   changes nothing\n"
           "  --report=json    print that as one JSON object and end\n"
           "  --running ID     for a report: the application with this bundle identifier is\n"
           "                   running (repeatable)\n"
           "  --help           print this and end\n"
           "  --version        print the version and end\n"
           "\n"
           "A second start opens the popover of the Ombrel that runs already.\n";
}

std::string versionText() { return "Ombrel " OMBREL_VERSION "\n"; }

} // namespace vantry
