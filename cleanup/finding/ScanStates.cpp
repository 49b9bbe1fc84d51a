#include "cleanup/finding/ScanStates.h"

#include "cleanup/gate/SafePaths.h"
#include "cleanup/model/CleanupRules.h"
#include "platform/ItemFacts.h"

namespace vantry::CleanupScanner {

CleanupScanState accessState(ScanWorkers& workers, std::span<const std::filesystem::path> places, Deadline deadline,
                             const FolderQuestions* questions) {
    bool sawUnreadable = false;
    bool sawIncomplete = false;
    for (const auto& place : places) {
        if (hasPassed(deadline))
            return sawUnreadable ? CleanupScanState::permissionNeeded : CleanupScanState::unavailable;
        switch (questions ? questions->access(place) : folderAccess(place)) {
        case FolderAccess::none: break;
        case FolderAccess::unreadable: sawUnreadable = true; break;
        case FolderAccess::readable:
        case FolderAccess::unknown: // a worker would wait for the user's answer
            if (workers.shallowChildren(place, deadline).complete)
                return CleanupScanState::checked;
            sawIncomplete = true;
        }
    }
    return sawUnreadable   ? CleanupScanState::permissionNeeded
           : sawIncomplete ? CleanupScanState::unavailable
                           : CleanupScanState::notPresent;
}

std::map<CleanupCategory, CleanupScanState> scanStates(ScanWorkers& workers, const ScanEnvironment& environment,
                                                       Deadline deadline) {
    const auto stateOf = [&](CleanupCategory category) {
        return accessState(workers, approvedRoots(category, environment.places), deadline, environment.questions.get());
    };
    std::map<CleanupCategory, CleanupScanState> states;
    const auto downloads = stateOf(CleanupCategory::installer);
    for (const auto category : {CleanupCategory::installer, CleanupCategory::archive,
                                CleanupCategory::interruptedDownload, CleanupCategory::largeDownload})
        states[category] = downloads;
    // Links are never followed, for instance to another disk.
    states[CleanupCategory::deviceBackup] =
        isSymbolicLink(approvedRoots(CleanupCategory::deviceBackup, environment.places).front())
            ? CleanupScanState::relocated
            : stateOf(CleanupCategory::deviceBackup);
    for (const auto& row : allCleanupCategories)
        if (!states.contains(row.value))
            states[row.value] = stateOf(row.value);
    return states;
}

} // namespace vantry::CleanupScanner
