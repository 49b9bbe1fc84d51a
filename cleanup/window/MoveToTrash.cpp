#include "cleanup/window/MoveToTrash.h"

#include "cleanup/window/MoveTexts.h"
#include "platform/FileCoordinator.h"

#include <string>
#include <utility>

namespace vantry {

namespace {

TrashMove notMoved(std::string reason) {
    return {.outcome = TrashMove::Outcome::notMoved, .reason = std::move(reason)};
}

TrashMove moveOne(const CleanupServices& services, const CleanupCandidate& candidate) {
    TrashMove moved = notMoved("the file could not be coordinated");
    const auto coordinated = services.coordinateMoving(candidate.url, [&](const std::filesystem::path& path) {
        if (!isSamePlace(path, candidate.url))
            moved = notMoved("the coordinated file path changed after confirmation");
        else
            moved = services.moveToTrash(candidate);
    });
    return coordinated ? moved : notMoved(coordinated.error().message);
}

} // namespace

std::vector<std::string> validationFailureLines(const CleanupServices& services,
                                                std::span<const CleanupCandidate> candidates) {
    std::vector<std::string> lines;
    for (const auto& candidate : candidates)
        if (const auto reason = services.validationFailure(candidate))
            lines.push_back(failureLine(candidate, *reason));
    return lines;
}

MoveOutcome moveToTrash(const CleanupServices& services, std::span<const CleanupCandidate> candidates) {
    MoveOutcome outcome;
    for (const auto& candidate : candidates) {
        const auto moved = moveOne(services, candidate);
        if (moved.outcome == TrashMove::Outcome::moved)
            outcome.moved.push_back(candidate);
        else
            outcome.failureLines.push_back(failureLine(candidate, moved.reason));
    }
    outcome.recordWritten = !outcome.moved.empty() && services.saveHistory(outcome.moved);
    return outcome;
}

} // namespace vantry
