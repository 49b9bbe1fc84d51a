#include "cleanup/window/CleanupServices.h"

#include "cleanup/finding/CleanupScanner.h"
#include "cleanup/finding/GuideMeasurement.h"
#include "platform/StopSwitch.h"
#include "platform/UserSession.h"
#include "storage/StorageReader.h"

#include <tuple>
#include <utility>

namespace vantry {

namespace {

// The report without a home folder: nothing could be checked.
CleanupScanReport nothingChecked() {
    CleanupScanReport report{.storageSnapshot = StorageReader::readBasicSystemVolume()};
    for (const auto& row : allCleanupCategories) {
        report.states[row.value] = CleanupScanState::unavailable;
        report.metrics[row.value] = {};
    }
    return report;
}

CleanupScanReport scan(std::span<const std::string> runningBundleIdentifiers, std::shared_ptr<StopSwitch> stopSwitch,
                       std::shared_ptr<FolderQuestions> questions) {
    const auto environment = ScanEnvironment::current(std::move(stopSwitch), std::move(questions));
    return environment ? CleanupScanner::scan(*environment, runningBundleIdentifiers) : nothingChecked();
}

std::map<std::string, GuideUsage> measureGuide(const std::shared_ptr<StopSwitch>& stopSwitch,
                                               const std::function<bool()>& isWanted) {
    const auto environment = ScanEnvironment::current(stopSwitch, nullptr);
    return environment ? CleanupScanner::measureGuide(*environment, isWanted) : std::map<std::string, GuideUsage>();
}

} // namespace

CleanupServices systemCleanupServices(FolderOpener opener) {
    const auto home = homeFolder().value_or(std::filesystem::path());
    const auto stopSwitch = StopSwitch::create().value_or(nullptr); // without one, scans run to their own end
    CleanupServices services{
        .home = home,
        .downloads = downloadFolder(home),
        .applications = "/Applications",
        .system = hostSystem(),
        .scan = [stopSwitch, questions = FolderQuestions::create(std::move(opener))](
                    std::span<const std::string> running) { return scan(running, stopSwitch, questions); },
        .measureGuide = {},
        .stopScanning =
            [stopSwitch] {
                if (stopSwitch)
                    std::ignore = stopSwitch->stop();
            },
        .move = systemMoveServices()};
    if (services.system != HostSystem::macOS)
        services.measureGuide = [stopSwitch](const std::function<bool()>& isWanted) {
            return measureGuide(stopSwitch, isWanted);
        };
    return services;
}

} // namespace vantry
