#include "cleanup/move/MoveCandidates.h"

#include "base/Text.h"
#include "platform/FileCoordinator.h"

#include <cstdio>
#include <optional>
#include <utility>

namespace vantry {

namespace {

// The mover's answer outweighs an error of the coordination, which may fail after the file was moved.
TrashMove moveOne(const MoveServices& services, const CleanupCandidate& candidate) {
    std::optional<TrashMove> move;
    const auto coordinated = services.coordinateMoving(candidate.url, [&](const std::filesystem::path& path) {
        move = isSamePlace(path, candidate.url)
                   ? services.moveValidated(candidate)
                   : TrashMove::notMoved("the coordinated file path changed after confirmation");
    });
    if (move)
        return *move;
    return TrashMove::notMoved(coordinated ? "the file could not be coordinated" : coordinated.error().message);
}

} // namespace

std::string failureLine(const CleanupCandidate& candidate, std::string_view reason) {
    return singleLine(candidate.title) + ": " + singleLine(reason);
}

std::string misplacedLine(const MisplacedItem& item) {
    return failureLine(item.candidate,
                       item.move.path.empty() ? item.move.reason : "it is at " + item.move.path.native());
}

std::vector<std::string> validationFailureLines(const MoveServices& services,
                                                std::span<const CleanupCandidate> candidates) {
    std::vector<std::string> lines;
    for (const auto& candidate : candidates)
        if (const auto reason = services.validationFailure(candidate))
            lines.push_back(failureLine(candidate, *reason));
    return lines;
}

MoveOutcome moveCandidates(const MoveServices& services, std::span<const CleanupCandidate> candidates,
                           MoveControl& control) {
    MoveOutcome outcome;
    if (!control.begin())
        return outcome;
    std::optional<CleanupRecord> record;
    for (const auto& candidate : candidates) {
        if (control.isStopped())
            break;
        const auto move = moveOne(services, candidate);
        switch (move.outcome) {
        case TrashMove::Outcome::moved:
            outcome.moved.push_back(candidate);
            if (!record)
                record = CleanupRecord::startedAt(services.now());
            static_cast<void>(services.saveHistory(outcome.moved, *record, RecordVersion::interim));
            break;
        case TrashMove::Outcome::notMoved: outcome.failureLines.push_back(failureLine(candidate, move.reason)); break;
        case TrashMove::Outcome::misplaced: outcome.misplaced.push_back({candidate, move}); break;
        }
    }
    outcome.recordWritten = record && services.saveHistory(outcome.moved, *record, RecordVersion::last);
    if (control.isStopped())
        for (const auto& item : outcome.misplaced)
            std::fprintf(stderr, "ombrel: %s\n", misplacedLine(item).c_str());
    control.end();
    return outcome;
}

} // namespace vantry
