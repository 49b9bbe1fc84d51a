#include "cleanup/window/CleanupServices.h"

#include "cleanup/scan/CleanupScanner.h"
#include "cleanup/scan/CleanupValidation.h"
#include "cleanup/scan/ScanEnvironment.h"
#include "cleanup/window/CleanupHistory.h"
#include "platform/FileCoordinator.h"
#include "platform/StopSwitch.h"
#include "platform/Trash.h"
#include "platform/UserSession.h"
#include "storage/StorageReader.h"

#include <tuple>
#include <utility>

namespace vantry {

namespace {

constexpr const char* noHome = "the home folder could not be verified";

// Without a home folder nothing can be checked, which is a result too.
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

std::optional<std::string> validationFailure(const CleanupCandidate& candidate) {
    const auto environment = ScanEnvironment::currentWithoutWorkers();
    return environment ? CleanupScanner::validationFailure(candidate, *environment) : noHome;
}

TrashMove moveValidated(const CleanupCandidate& candidate) {
    const auto environment = ScanEnvironment::currentWithoutWorkers();
    if (!environment)
        return {.outcome = TrashMove::Outcome::notMoved, .reason = noHome};
    const auto checked = CleanupScanner::validatedFile(candidate, *environment);
    if (!checked)
        return {.outcome = TrashMove::Outcome::notMoved, .reason = checked.error()};
    return moveToTrash(checked->file, checked->facts);
}

} // namespace

CleanupServices systemCleanupServices(FolderOpener opener) {
    const auto home = homeFolder().value_or(std::filesystem::path());
    const auto stopSwitch = StopSwitch::create().value_or(nullptr); // without one, scans end by themselves
    return {.home = home,
            .applications = "/Applications",
            .scan = [stopSwitch, questions = FolderQuestions::create(std::move(opener))](
                        std::span<const std::string> running) { return scan(running, stopSwitch, questions); },
            .stopScanning =
                [stopSwitch] {
                    if (stopSwitch)
                        std::ignore = stopSwitch->stop();
                },
            .validationFailure = validationFailure,
            .coordinateMoving = coordinateMoving,
            .moveToTrash = moveValidated,
            .saveHistory =
                [home](std::span<const CleanupCandidate> moved, const CleanupRecord& record, RecordVersion version) {
                    return !home.empty() && saveHistory(moved, home, record, version);
                },
            .now = [] { return SystemTime(std::chrono::system_clock::now()); }};
}

} // namespace vantry
