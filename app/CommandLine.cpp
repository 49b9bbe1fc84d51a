#include "app/CommandLine.h"

#include <array>
#include <string_view>
#include <utility>

namespace vantry {

LaunchMode launchMode(std::span<const std::string> arguments) {
    static constexpr std::array<std::pair<std::string_view, LaunchMode>, 4> modes{{
        {"--help", LaunchMode::help},
        {"--version", LaunchMode::version},
        {"--status", LaunchMode::status},
        {"--status=json", LaunchMode::statusJson},
    }};
    for (const auto& argument : arguments)
        for (const auto& [spelling, mode] : modes)
            if (argument == spelling)
                return mode;
    return LaunchMode::userInterface;
}

std::string helpText() {
    return "Usage: ombrel [OPTION]\n"
           "Shows how full the startup volume is as a coloured bar in the menu bar or tray.\n"
           "\n"
           "  --show-cleanup   also open the \"Free Up Space\" window\n"
           "  --status         print the volume’s figures and end\n"
           "  --status=json    print them as one JSON object and end\n"
           "  --help           print this and end\n"
           "  --version        print the version and end\n"
           "\n"
           "A second start opens the popover of the Ombrel that runs already.\n";
}

std::string versionText() { return "Ombrel " OMBREL_VERSION "\n"; }

int runEntry(const std::vector<std::string>& arguments, const EntrySteps& steps) {
    if (steps.runFilesystemWorkerIfRequested(arguments))
        return 0;
    if (const auto status = steps.runInTerminal(launchMode(arguments)))
        return *status;
    return steps.runUserInterface(arguments);
}

} // namespace vantry
