#include "app/CommandLine.h"
#include "app/ShellEntry.h"
#include "app/StatusText.h"
#include "cleanup/scan/FilesystemWorker.h"
#include "platform/ShellModule.h"
#include "platform/UserSession.h"
#include "storage/StorageReader.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace vantry {

namespace {

int printOut(const std::string& text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return written ? EXIT_SUCCESS : EXIT_FAILURE;
}

int fail(const std::string& message, int status = EXIT_FAILURE) {
    std::fprintf(stderr, "ombrel: %s\n", message.c_str());
    return status;
}

int printStatus(bool json) {
    const auto result = StorageReader::readSystemVolume();
    if (!result)
        return fail(result.error().localizedDescription());
    return printOut(json ? statusJson(*result) : statusText(*result));
}

std::optional<int> runInTerminal(LaunchMode mode) {
    switch (mode) {
    case LaunchMode::userInterface: return std::nullopt;
    case LaunchMode::help: return printOut(helpText());
    case LaunchMode::version: return printOut(versionText());
    case LaunchMode::status: return printStatus(false);
    case LaunchMode::statusJson: return printStatus(true);
    }
    return std::nullopt;
}

int runUserInterface(std::vector<std::string> arguments) {
    ShellLaunch launch{.arguments = std::move(arguments), .instance = nullptr};
    const auto home = homeFolder();
    if (const auto folder = userRuntimeFolder(); folder && home) {
        const auto name = instanceName(*home, graphicalSessionName());
        auto instance = SingleInstance::claim(*folder, name);
        if (instance && !*instance) {
            const bool cleanup = std::ranges::count(launch.arguments, "--show-cleanup") > 0;
            if (SingleInstance::ask(*folder, name,
                                    cleanup ? InstanceRequest::showCleanup : InstanceRequest::showPopover))
                return EXIT_SUCCESS;
            instance = SingleInstance::claim(*folder, name); // it may have been about to end
            if (instance && !*instance)
                return fail("Ombrel runs already and does not answer.");
        }
        if (instance)
            launch.instance = std::move(*instance);
    }
    const auto entry = loadShellSymbol(shellEntryName);
    if (!entry)
        return fail("No user interface: " + entry.error().message);
    return reinterpret_cast<ShellEntry*>(*entry)(std::move(launch));
}

} // namespace

} // namespace vantry

int main(int argumentCount, char** argumentValues) {
    using namespace vantry;
    const std::vector<std::string> arguments(argumentValues + std::min(argumentCount, 1),
                                             argumentValues + argumentCount);
    return runEntry(arguments, {.runFilesystemWorkerIfRequested = CleanupScanner::runFilesystemWorkerIfRequested,
                                .runInTerminal = runInTerminal,
                                .runUserInterface = runUserInterface});
}
