#include "cleanup/window/MoveToTrash.h"

#include "cleanup/model/StandardizedPath.h"
#include "cleanup/window/MoveTexts.h"

namespace vantry {

namespace {

std::unexpected<Error> failed(const char* reason) { return std::unexpected(Error{ErrorKind::invalid, reason}); }

Result<void> moveOne(const CleanupServices& services, const CleanupCandidate& candidate) {
    Result<void> moved = failed("the file could not be coordinated");
    const auto coordinated = services.coordinateMoving(candidate.url, [&](const std::filesystem::path& path) {
        if (standardizedPath(path) != standardizedPath(candidate.url))
            moved = failed("the coordinated file path changed after confirmation");
        else
            moved = services.moveToTrash(candidate);
    });
    return coordinated ? moved : coordinated;
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
        if (const auto moved = moveOne(services, candidate))
            outcome.moved.push_back(candidate);
        else
            outcome.failureLines.push_back(failureLine(candidate, moved.error().message));
    }
    outcome.recordWritten = !outcome.moved.empty() && services.saveHistory(outcome.moved);
    return outcome;
}

} // namespace vantry
