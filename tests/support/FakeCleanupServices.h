#pragma once

#include "cleanup/window/CleanupServices.h"
#include "tests/support/FakeCallLog.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace vantry {

/// A disk whose answers the test decides. Outlives what was made with its `services()`.
struct FakeCleanupServices {
    explicit FakeCleanupServices(std::shared_ptr<FakeCallLog> itsLog) : log(std::move(itsLog)) {}
    FakeCleanupServices(const FakeCleanupServices&) = delete;
    FakeCleanupServices& operator=(const FakeCleanupServices&) = delete;

    std::shared_ptr<FakeCallLog> log;
    std::filesystem::path home = "/home/ada";
    std::filesystem::path applications = "/Applications";

    CleanupScanReport report;                                   ///< what the next scan finds
    std::map<std::string, std::string> failures;                ///< by path: why a file may not be moved
    std::map<std::string, std::filesystem::path> coordinatedTo; ///< by path: where a file is once all agree
    std::map<std::string, Error> coordinationErrors;            ///< by path
    std::map<std::string, TrashMove> moves;                     ///< by path: what becomes of a move; else it succeeds
    std::function<void(const CleanupCandidate&)> beforeMove;    ///< what happens while a file is in hand; may be empty
    decltype(CleanupServices::measureGuide) measureGuide;       ///< empty: there is no guide to measure
    bool historyCanBeWritten = true;
    HostSystem system = HostSystem::macOS;
    SystemTime now{std::chrono::seconds(1'769'847'300)};
    std::map<std::string, std::vector<CleanupCandidate>> records; ///< what each was last written for, by its file name

    /// What the only record was last written for; nothing when there is not exactly one.
    [[nodiscard]] std::vector<CleanupCandidate> recorded() const {
        return records.size() == 1 ? records.begin()->second : std::vector<CleanupCandidate>();
    }

    [[nodiscard]] CleanupServices services() {
        return {.home = home,
                .downloads = home / "Downloads",
                .applications = applications,
                .system = system,
                .scan =
                    [this](std::span<const std::string> running) {
                        std::string call = "cleanup.scan";
                        for (const auto& identifier : running)
                            call += " " + identifier;
                        log->add(call);
                        return report;
                    },
                .measureGuide = measureGuide,
                .stopScanning = [this] { log->add("cleanup.stopScanning"); },
                .move = {.validationFailure = [this](const CleanupCandidate& candidate) -> std::optional<std::string> {
                             log->add("cleanup.validate " + candidate.url.native());
                             const auto failure = failures.find(candidate.url.native());
                             return failure == failures.end() ? std::nullopt : std::optional(failure->second);
                         },
                         .coordinateMoving =
                             [this](const std::filesystem::path& file, const auto& accessor) {
                                 log->add("cleanup.coordinate " + file.native());
                                 const auto refused = resultOf(coordinationErrors, file);
                                 const auto moved = coordinatedTo.find(file.native());
                                 if (refused)
                                     accessor(moved == coordinatedTo.end() ? file : moved->second);
                                 return refused;
                             },
                         .moveValidated =
                             [this](const CleanupCandidate& candidate) {
                                 log->add("cleanup.move " + candidate.url.native());
                                 if (beforeMove)
                                     beforeMove(candidate);
                                 const auto move = moves.find(candidate.url.native());
                                 return move == moves.end() ? TrashMove{.outcome = TrashMove::Outcome::moved}
                                                            : move->second;
                             },
                         .saveHistory =
                             [this](std::span<const CleanupCandidate> candidates, const CleanupRecord& record,
                                    RecordVersion version) {
                                 log->add("cleanup.saveHistory " + std::to_string(candidates.size()) +
                                          (version == RecordVersion::last ? " last" : ""));
                                 if (historyCanBeWritten)
                                     records[record.fileName].assign(candidates.begin(), candidates.end());
                                 return historyCanBeWritten;
                             },
                         .now = [this] { return now; }},
                .longestEnding = std::chrono::milliseconds(0)}; // a move runs on the thread that would wait for it
    }

private:
    static Result<void> resultOf(const std::map<std::string, Error>& errors, const std::filesystem::path& path) {
        const auto error = errors.find(path.native());
        if (error != errors.end())
            return std::unexpected(error->second);
        return {};
    }
};

} // namespace vantry
