#include "app/CommandLine.h"
#include "app/ReportText.h"
#include "app/ShellEntry.h"
#include "app/StatusText.h"
#include "cleanup/finding/CleanupScanner.h"
#include "cleanup/finding/GuideMeasurement.h"
#include "cleanup/measuring/FilesystemWorker.h"
#include "platform/Picture.h"
#include "platform/ShellModule.h"
#include "platform/UserSession.h"
#include "storage/StorageReader.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

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

bool understandsEscapes(int fd) {
    const char* terminal = std::getenv("TERM");
    return isatty(fd) == 1 && terminal && std::string_view(terminal) != "dumb";
}

// Shown on a terminal during the scan.
class ProgressLine {
public:
    ProgressLine() {
        if (shown_)
            std::fputs("Looking through the home folder…", stderr);
    }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine() {
        if (shown_)
            std::fputs("\r\x1b[K", stderr);
    }

private:
    bool shown_ = understandsEscapes(STDERR_FILENO) && isatty(STDOUT_FILENO) == 1;
};

bool wantsColors() {
    const char* noColor = std::getenv("NO_COLOR");
    return understandsEscapes(STDOUT_FILENO) && (!noColor || *noColor == '\0');
}

CleanupScanReport scanWithProgress(const ScanEnvironment& environment, std::span<const std::string> arguments) {
    const ProgressLine progress;
    auto report = CleanupScanner::scan(environment, runningBundleIdentifiers(arguments));
    report.guide = CleanupScanner::measureGuide(environment, [] { return true; });
    return report;
}

int printReport(bool json, std::span<const std::string> arguments) {
    if (arguments.back() == "--running")
        return fail("--running needs the bundle identifier of an application.");
    const auto environment = ScanEnvironment::current(nullptr, FolderQuestions::create());
    if (!environment)
        return fail(environment.error().message);
    const auto report = scanWithProgress(*environment, arguments);
    return printOut(json ? reportJson(report)
                         : reportText(report, environment->places.home, wantsColors(), hostSystem()));
}

std::optional<int> runInTerminal(LaunchMode mode, std::span<const std::string> arguments) {
    switch (mode) {
    case LaunchMode::userInterface: return std::nullopt;
    case LaunchMode::help: return printOut(helpText());
    case LaunchMode::version: return printOut(versionText());
    case LaunchMode::status: return printStatus(false);
    case LaunchMode::statusJson: return printStatus(true);
    case LaunchMode::report: return printReport(false, arguments);
    case LaunchMode::reportJson: return printReport(true, arguments);
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
            const auto request = requestOfSecondStart(launch.arguments);
            if (!request || SingleInstance::ask(*folder, name, *request))
                return EXIT_SUCCESS;
            instance = SingleInstance::claim(*folder, name); // the other process may have been about to exit
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
    std::signal(SIGCHLD, SIG_DFL); // if the parent process ignores it, no worker can be waited for
    const std::vector<std::string> arguments(argumentValues + std::min(argumentCount, 1),
                                             argumentValues + argumentCount);
    if (const auto status = runPictureWorkerIfRequested(arguments))
        std::_Exit(*status); // without the cleanup of decoders whose threads still run
    if (CleanupScanner::runFilesystemWorkerIfRequested(arguments))
        return EXIT_SUCCESS;
    if (const auto status = runInTerminal(launchMode(arguments), arguments))
        return *status;
    return runUserInterface(arguments);
}
