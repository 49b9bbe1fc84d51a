#pragma once

#include "cleanup/window/CleanupServices.h"
#include "tests/cleanup/window/MoveExplorer.h"
#include "tests/support/Candidates.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vantry {

/// A disk with a few files that other programs change. Its answers are true at the moment of the call, and it records
/// the move that the user confirmed last. Outlives what was made with its `services()`.
class ExploredDisk {
public:
    struct File {
        CleanupCategory category;
        std::filesystem::path path;
        std::int64_t size;
        std::int64_t growth; ///< a digit of its own in every sum of sizes
        int modification = 0;
        int identity = 0;
        bool isInPlace = true;
    };
    /// By the candidates' UI ids.
    struct Move {
        std::vector<std::string> confirmed;
        std::vector<std::string> begun, moved, left, misplaced; ///< what was done, in that order
        std::vector<std::string> misplacedPaths;
        std::vector<std::string> recorded; ///< as the record was to be written last
        std::string recordName;
        bool recordWasWritten = false; ///< the last time
    };

    std::function<void()> pause; ///< whatever else happens while a call takes its time
    std::function<void(bool holds, const char* rule)> expect;
    std::chrono::milliseconds longestEnding{0};

    std::vector<File> files{{CleanupCategory::log, "/logs/a", 1'000'000, 1'000'000},
                            {CleanupCategory::log, "/logs/b", 20'000'000, 10'000'000},
                            {CleanupCategory::installer, "/downloads/c", 300'000'000, 100'000'000},
                            {CleanupCategory::archive, "/downloads/review", 4'000'000'000, 1'000'000'000}};
    bool infoIsRemoved = false;     ///< another program removes the next info file between its writing and the move
    bool putBackIsRefused = false;  ///< that file can then neither be put back nor get another info file
    bool recordsAreRefused = false; ///< no record can be written
    bool mayBegin = true;           ///< a file may begin to move

    std::vector<CleanupCandidate> found; ///< by the last scan
    int failedChecks = 0;
    Move move;

    [[nodiscard]] const File& file(unsigned which) const { return files[which % files.size()]; }

    /// Applies what another program does. `which` selects the file, for the events that concern one.
    void happen(MoveExplorer::Event event, unsigned which) {
        auto& touched = files[which % files.size()];
        switch (event) {
        case MoveExplorer::Event::fileChanges: ++touched.modification; break;
        case MoveExplorer::Event::fileIsReplaced:
            ++touched.identity;
            touched.isInPlace = true;
            break;
        case MoveExplorer::Event::fileGrows: touched.size += touched.growth; break;
        case MoveExplorer::Event::infoIsRemoved: infoIsRemoved = true; break;
        case MoveExplorer::Event::putBackIsRefused: infoIsRemoved = putBackIsRefused = true; break;
        case MoveExplorer::Event::recordsAreRefused: recordsAreRefused = !recordsAreRefused; break;
        default: break;
        }
    }

    /// No file is in hand, and what was moved is recorded.
    [[nodiscard]] bool isAccountedFor() const {
        return move.begun.size() == move.moved.size() + move.left.size() + move.misplaced.size() &&
               move.recorded == move.moved;
    }

    [[nodiscard]] CleanupServices services() {
        return {
            .home = "/home/ada",
            .applications = "/Applications",
            .system = HostSystem::macOS,
            .scan = [this](std::span<const std::string>) { return scan(); },
            .stopScanning = [] {},
            .move = {.validationFailure =
                         [this](const CleanupCandidate& candidate) {
                             pause();
                             const auto failure = change(candidate);
                             failedChecks += failure ? 1 : 0;
                             return failure;
                         },
                     .coordinateMoving =
                         [](const std::filesystem::path& path, const auto& accessor) {
                             accessor(path);
                             return Result<void>();
                         },
                     .moveValidated = [this](const CleanupCandidate& candidate) { return moveOne(candidate); },
                     .saveHistory = [this](std::span<const CleanupCandidate> candidates, const CleanupRecord& record,
                                           RecordVersion) { return save(candidates, record.fileName); },
                     .now = [] { return SystemTime(std::chrono::seconds(1'700'000'000)); }},
            .longestEnding = longestEnding};
    }

private:
    CleanupScanReport scan() {
        pause();
        found.clear();
        for (const auto& file : files)
            if (file.isInPlace)
                found.push_back(CleanupCandidate::withFingerprint(
                    file.path, file.path.filename().native(), file.category, "Not modified for a while", file.size,
                    CleanupConfidence::suggested,
                    {.contentModificationDate = SystemTime(std::chrono::seconds(file.modification)),
                     .resourceIdentifier = std::to_string(file.identity)},
                    {}));
        auto report = reportOf(found);
        pause();
        return report;
    }

    File& fileOf(const CleanupCandidate& candidate) { return *std::ranges::find(files, candidate.url, &File::path); }

    /// Why the candidate may not be moved.
    std::optional<std::string> change(const CleanupCandidate& candidate) {
        const auto& file = fileOf(candidate);
        if (!file.isInPlace)
            return "it no longer exists";
        if (candidate.scannedResourceIdentifier != std::to_string(file.identity))
            return "a different item now occupies this path";
        if (candidate.scannedModificationDate != SystemTime(std::chrono::seconds(file.modification)))
            return "it was modified after the scan";
        if (candidate.size != file.size)
            return "its allocated size changed after the scan";
        return std::nullopt;
    }

    TrashMove moveOne(const CleanupCandidate& candidate) {
        expect(mayBegin, "no file begins to move after the end");
        expect(std::ranges::count(move.confirmed, candidate.uiID) == 1, "only confirmed files move");
        expect(std::ranges::count(move.begun, candidate.uiID) == 0, "no file moves twice");
        expect(move.recorded == move.moved, "a file is recorded before the next one moves");
        move.begun.push_back(candidate.uiID);
        pause();
        auto& file = fileOf(candidate);
        if (const auto failure = change(candidate)) {
            move.left.push_back(candidate.uiID);
            return {TrashMove::Outcome::notMoved, *failure, {}};
        }
        file.isInPlace = false;
        pause(); // it is in the Trash with its info file, and another program may remove that
        const bool withoutInfo = std::exchange(infoIsRemoved, false);
        const bool refused = std::exchange(putBackIsRefused, false);
        if (withoutInfo && refused) {
            move.misplaced.push_back(candidate.uiID);
            const auto path = "/trash" / file.path.filename();
            move.misplacedPaths.push_back(path);
            return {TrashMove::Outcome::misplaced, "it could not be put back", path};
        }
        if (withoutInfo && !file.isInPlace) { // its name is still free
            file.isInPlace = true;
            move.left.push_back(candidate.uiID);
            return {TrashMove::Outcome::notMoved, "its entry in the Trash was removed", {}};
        }
        move.moved.push_back(candidate.uiID);
        return {TrashMove::Outcome::moved, {}, {}};
    }

    bool save(std::span<const CleanupCandidate> candidates, const std::string& name) {
        pause();
        move.recorded.clear();
        for (const auto& candidate : candidates)
            move.recorded.push_back(candidate.uiID);
        expect(move.recorded == move.moved, "a record names what was moved");
        expect(move.recordName.empty() || move.recordName == name, "a move has one record");
        move.recordName = name;
        move.recordWasWritten = !recordsAreRefused;
        return move.recordWasWritten;
    }
};

} // namespace vantry
