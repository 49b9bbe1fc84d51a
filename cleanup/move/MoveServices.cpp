#include "cleanup/move/MoveServices.h"

#include "cleanup/gate/CleanupValidation.h"
#include "platform/FileCoordinator.h"
#include "platform/UserSession.h"

#include <chrono>

namespace vantry {

namespace {

constexpr const char* noHome = "the home folder could not be verified";

SystemTime now() { return SystemTime(std::chrono::system_clock::now()); }

std::optional<std::string> validationFailure(const CleanupCandidate& candidate) {
    const auto places = CleanupPlaces::current();
    return places ? CleanupScanner::validationFailure(candidate, *places, now()) : noHome;
}

TrashMove moveValidated(const CleanupCandidate& candidate) {
    const auto places = CleanupPlaces::current();
    if (!places)
        return TrashMove::notMoved(noHome);
    const auto checked = CleanupScanner::validatedFile(candidate, *places, now());
    if (!checked)
        return TrashMove::notMoved(checked.error());
    return moveToTrash(checked->file, checked->facts);
}

} // namespace

MoveServices systemMoveServices() {
    return {.validationFailure = validationFailure,
            .coordinateMoving = coordinateMoving,
            .moveValidated = moveValidated,
            .saveHistory = [home = homeFolder()](
                               std::span<const CleanupCandidate> moved, const CleanupRecord& record,
                               RecordVersion version) { return home && saveHistory(moved, *home, record, version); },
            .now = now};
}

} // namespace vantry
