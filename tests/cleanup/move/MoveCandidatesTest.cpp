#include "cleanup/move/MoveCandidates.h"
#include "tests/support/Candidates.h"
#include "tests/support/FakeCleanupServices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MoveCandidates : public testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> movedNames() const {
        std::vector<std::string> names;
        for (const auto& moved : outcome.moved)
            names.push_back(moved.title);
        return names;
    }

    FakeCleanupServices disk{std::make_shared<FakeCallLog>()};
    std::vector<CleanupCandidate> candidates{logAt("/l/a"), logAt("/l/b"), logAt("/l/c")};
    MoveControl control;
    MoveOutcome outcome;
};

TEST_F(MoveCandidates, ContinuesAfterEveryKindOfFailure) {
    struct Case {
        const char* name;
        std::function<void(FakeCleanupServices&)> arrange;
        std::vector<std::string> moved;
        std::vector<std::string> failures;
    };
    const std::vector<Case> cases{
        {"none", [](auto&) {}, {"a", "b", "c"}, {}},
        {"not validated, or not moved",
         [](auto& fake) { fake.moves["/l/a"] = {.reason = "it no longer exists"}; },
         {"b", "c"},
         {"a: it no longer exists"}},
        {"not coordinated",
         [](auto& fake) {
             fake.coordinationErrors["/l/c"] = Error{ErrorKind::system, "The file is in use."};
         },
         {"a", "b"},
         {"c: The file is in use."}},
        {"elsewhere meanwhile",
         [](auto& fake) { fake.coordinatedTo["/l/b"] = "/l/d"; },
         {"a", "c"},
         {"b: the coordinated file path changed after confirmation"}},
        {"the same path, written differently",
         [](auto& fake) { fake.coordinatedTo["/l/b"] = "/l/x/..//./b"; },
         {"a", "b", "c"},
         {}},
        {"all",
         [](auto& fake) {
             for (const char* path : {"/l/a", "/l/b", "/l/c"})
                 fake.moves[path] = {.reason = "no"};
         },
         {},
         {"a: no", "b: no", "c: no"}},
    };
    for (const auto& [name, arrange, moved, failures] : cases) {
        SCOPED_TRACE(name);
        FakeCleanupServices fresh{std::make_shared<FakeCallLog>()};
        arrange(fresh);
        MoveControl own;
        outcome = moveCandidates(fresh.services().move, candidates, own);
        EXPECT_EQ(movedNames(), moved);
        EXPECT_EQ(outcome.failureLines, failures);
        EXPECT_EQ(fresh.log->count("cleanup.coordinate"), 3);
        EXPECT_EQ(fresh.log->count("cleanup.saveHistory"), moved.empty() ? 0 : static_cast<int>(moved.size()) + 1);
        EXPECT_EQ(outcome.recordWritten, !moved.empty());
        EXPECT_EQ(fresh.recorded(), outcome.moved);
        EXPECT_THAT(outcome.misplaced, IsEmpty());
    }
}

TEST_F(MoveCandidates, AnAccessorThatIsNeverCalledIsAFailure) {
    auto services = disk.services().move;
    services.coordinateMoving = [](const auto&, const auto&) { return Result<void>(); };
    outcome = moveCandidates(services, candidates, control);
    EXPECT_THAT(movedNames(), IsEmpty());
    EXPECT_EQ(outcome.failureLines.size(), 3);
    EXPECT_EQ(disk.log->count("cleanup.move"), 0);
}

TEST_F(MoveCandidates, RecordsEachFileBeforeTheNextOneMoves) {
    outcome = moveCandidates(disk.services().move, candidates, control);
    EXPECT_THAT(disk.log->only({"cleanup.move", "cleanup.saveHistory"}),
                ElementsAre("cleanup.move /l/a", "cleanup.saveHistory 1", "cleanup.move /l/b", "cleanup.saveHistory 2",
                            "cleanup.move /l/c", "cleanup.saveHistory 3", "cleanup.saveHistory 3 last"));
    EXPECT_EQ(disk.records.size(), 1) << "one record, under one name";
}

TEST_F(MoveCandidates, TheRecordHasTheTimeOfItsFirstFile) {
    std::vector<CleanupRecord> used;
    auto services = disk.services().move;
    services.saveHistory = [&](auto, const CleanupRecord& record, RecordVersion) {
        used.push_back(record);
        disk.now += std::chrono::seconds(10);
        return true;
    };
    disk.moves["/l/a"] = {.reason = "no"};
    const auto begin = disk.now;
    outcome = moveCandidates(services, candidates, control);
    ASSERT_EQ(used.size(), 3);
    EXPECT_EQ(used[0].movedAt, begin);
    EXPECT_EQ(used[1], used[0]);
    EXPECT_EQ(used[2], used[0]);
}

TEST_F(MoveCandidates, TheLastVersionOfTheRecordDecidesWhetherItWasWritten) {
    for (const bool lastIsWritten : {true, false}) {
        auto services = disk.services().move;
        services.saveHistory = [&](auto, const CleanupRecord&, RecordVersion version) {
            return (version == RecordVersion::last) == lastIsWritten;
        };
        MoveControl fresh;
        EXPECT_EQ(moveCandidates(services, candidates, fresh).recordWritten, lastIsWritten);
    }
}

TEST_F(MoveCandidates, AMisplacedItemIsNeitherMovedNorInItsPlace) {
    disk.moves["/l/b"] = {TrashMove::Outcome::misplaced, "something else was in its place", "/trash/files/b"};
    outcome = moveCandidates(disk.services().move, candidates, control);
    EXPECT_THAT(movedNames(), ElementsAre("a", "c"));
    EXPECT_THAT(outcome.failureLines, IsEmpty());
    EXPECT_THAT(outcome.misplaced, ElementsAre(MisplacedItem{candidates[1], disk.moves["/l/b"]}));
    EXPECT_EQ(disk.recorded(), outcome.moved);
}

// A coordinator may report an error after it let the file be moved.
TEST_F(MoveCandidates, AnErrorOfTheCoordinationDoesNotUndoAMove) {
    auto services = disk.services().move;
    services.coordinateMoving = [](const auto& path, const auto& accessor) -> Result<void> {
        accessor(path);
        return std::unexpected(Error{ErrorKind::system, "The connection was interrupted."});
    };
    outcome = moveCandidates(services, candidates, control);
    EXPECT_THAT(movedNames(), ElementsAre("a", "b", "c"));
    EXPECT_THAT(outcome.failureLines, IsEmpty());
}

TEST_F(MoveCandidates, StopsBetweenTwoFilesAndWritesTheRecord) {
    disk.beforeMove = [this](const CleanupCandidate& candidate) {
        if (candidate.url == "/l/b")
            control.stop(std::chrono::milliseconds(0));
    };
    outcome = moveCandidates(disk.services().move, candidates, control);
    EXPECT_THAT(movedNames(), ElementsAre("a", "b"));
    EXPECT_THAT(outcome.failureLines, IsEmpty()) << "the third was not tried";
    EXPECT_TRUE(outcome.recordWritten);
    EXPECT_EQ(disk.recorded(), outcome.moved);
}

TEST_F(MoveCandidates, AStoppedMoveTellsOnStandardErrorWhereAMisplacedItemIs) {
    disk.moves["/l/a"] = {.outcome = TrashMove::Outcome::misplaced, .path = "/trash/files/a"};
    for (const bool stops : {false, true}) {
        if (stops)
            disk.beforeMove = [this](const auto&) { control.stop(std::chrono::milliseconds(0)); };
        testing::internal::CaptureStderr();
        outcome = moveCandidates(disk.services().move, candidates, control);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), stops ? "ombrel: a: it is at /trash/files/a\n" : "");
        EXPECT_EQ(outcome.misplaced.size(), 1U);
    }
}

TEST_F(MoveCandidates, StoppingWaitsForTheFileInHandAndItsRecord) {
    std::size_t versionsOfTheRecord = 0;
    std::thread stopper;
    disk.beforeMove = [&](const CleanupCandidate&) {
        stopper = std::thread([&] {
            control.stop(std::chrono::hours(1));
            versionsOfTheRecord = disk.log->count("cleanup.saveHistory");
        });
        while (!control.isStopped())
            std::this_thread::yield();
    };
    outcome = moveCandidates(disk.services().move, candidates, control);
    stopper.join();
    EXPECT_EQ(versionsOfTheRecord, 2) << "the interim and the last one";
    EXPECT_THAT(movedNames(), ElementsAre("a"));
}

TEST_F(MoveCandidates, TouchesNothingWhenItIsStoppedBeforeItBegins) {
    control.stop(std::chrono::hours(1)); // there is nothing to wait for
    outcome = moveCandidates(disk.services().move, candidates, control);
    EXPECT_THAT(disk.log->calls(), IsEmpty());
}

TEST_F(MoveCandidates, ListsEveryCandidateThatMayNotBeMoved) {
    disk.failures = {{"/l/c", "it was replaced"}, {"/l/a", "it no longer exists"}};
    EXPECT_THAT(validationFailureLines(disk.services().move, candidates),
                ElementsAre("a: it no longer exists", "c: it was replaced"));
    EXPECT_EQ(disk.log->count("cleanup.validate"), 3);
    disk.failures.clear();
    EXPECT_THAT(validationFailureLines(disk.services().move, candidates), IsEmpty());
}

} // namespace

} // namespace vantry
