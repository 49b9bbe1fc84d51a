#include "cleanup/window/MoveToTrash.h"
#include "tests/cleanup/window/Candidates.h"
#include "tests/support/FakeCleanupServices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MoveToTrash : public testing::Test {
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

TEST_F(MoveToTrash, GoesOnAfterEveryKindOfFailure) {
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
        outcome = moveToTrash(fresh.services(), candidates, own);
        EXPECT_EQ(movedNames(), moved);
        EXPECT_EQ(outcome.failureLines, failures);
        EXPECT_EQ(fresh.log->count("cleanup.coordinate"), 3);
        EXPECT_EQ(fresh.log->count("cleanup.saveHistory"), moved.empty() ? 0 : static_cast<int>(moved.size()) + 1);
        EXPECT_EQ(outcome.recordWritten, !moved.empty());
        EXPECT_EQ(fresh.recorded(), outcome.moved);
        EXPECT_THAT(outcome.misplaced, IsEmpty());
    }
}

TEST_F(MoveToTrash, AnAccessorThatIsNeverCalledIsAFailure) {
    auto services = disk.services();
    services.coordinateMoving = [](const auto&, const auto&) { return Result<void>(); };
    outcome = moveToTrash(services, candidates, control);
    EXPECT_THAT(movedNames(), IsEmpty());
    EXPECT_EQ(outcome.failureLines.size(), 3);
    EXPECT_EQ(disk.log->count("cleanup.moveToTrash"), 0);
}

TEST_F(MoveToTrash, SaysWhenTheRecordCouldNotBeWritten) {
    disk.historyCanBeWritten = false;
    outcome = moveToTrash(disk.services(), candidates, control);
    EXPECT_THAT(movedNames(), ElementsAre("a", "b", "c"));
    EXPECT_FALSE(outcome.recordWritten);
}

TEST_F(MoveToTrash, RecordsEachFileBeforeTheNextOneMoves) {
    outcome = moveToTrash(disk.services(), candidates, control);
    EXPECT_THAT(disk.log->only({"cleanup.moveToTrash", "cleanup.saveHistory"}),
                ElementsAre("cleanup.moveToTrash /l/a", "cleanup.saveHistory 1", "cleanup.moveToTrash /l/b",
                            "cleanup.saveHistory 2", "cleanup.moveToTrash /l/c", "cleanup.saveHistory 3",
                            "cleanup.saveHistory 3 last"));
    EXPECT_EQ(disk.records.size(), 1) << "one record, under one name";
}

TEST_F(MoveToTrash, TheRecordBearsTheTimeOfItsFirstFile) {
    std::vector<CleanupRecord> used;
    auto services = disk.services();
    services.saveHistory = [&](auto, const CleanupRecord& record, RecordVersion) {
        used.push_back(record);
        disk.now += std::chrono::seconds(10);
        return true;
    };
    disk.moves["/l/a"] = {.reason = "no"};
    const auto begin = disk.now;
    outcome = moveToTrash(services, candidates, control);
    ASSERT_EQ(used.size(), 3);
    EXPECT_EQ(used[0].movedAt, begin);
    EXPECT_EQ(used[1], used[0]);
    EXPECT_EQ(used[2], used[0]);
}

TEST_F(MoveToTrash, TheLastVersionOfTheRecordDecidesWhetherItWasWritten) {
    for (const bool lastIsWritten : {true, false}) {
        auto services = disk.services();
        services.saveHistory = [&](auto, const CleanupRecord&, RecordVersion version) {
            return (version == RecordVersion::last) == lastIsWritten;
        };
        MoveControl fresh;
        EXPECT_EQ(moveToTrash(services, candidates, fresh).recordWritten, lastIsWritten);
    }
}

TEST_F(MoveToTrash, AMisplacedItemIsNeitherMovedNorInItsPlace) {
    disk.moves["/l/b"] = {TrashMove::Outcome::misplaced, "something else was in its place", "/trash/files/b"};
    outcome = moveToTrash(disk.services(), candidates, control);
    EXPECT_THAT(movedNames(), ElementsAre("a", "c"));
    EXPECT_THAT(outcome.failureLines, IsEmpty());
    EXPECT_THAT(outcome.misplaced, ElementsAre(MisplacedItem{candidates[1], disk.moves["/l/b"]}));
    EXPECT_EQ(disk.recorded(), outcome.moved);
}

// A coordinator may report an error after it let the file be moved.
TEST_F(MoveToTrash, AnErrorOfTheCoordinationDoesNotUndoAMove) {
    auto services = disk.services();
    services.coordinateMoving = [](const auto& path, const auto& accessor) -> Result<void> {
        accessor(path);
        return std::unexpected(Error{ErrorKind::system, "The connection was interrupted."});
    };
    outcome = moveToTrash(services, candidates, control);
    EXPECT_THAT(movedNames(), ElementsAre("a", "b", "c"));
    EXPECT_THAT(outcome.failureLines, IsEmpty());
}

TEST_F(MoveToTrash, StopsBetweenTwoFilesAndWritesTheRecord) {
    disk.beforeMove = [this](const CleanupCandidate& candidate) {
        if (candidate.url == "/l/b")
            control.stop(std::chrono::milliseconds(0));
    };
    outcome = moveToTrash(disk.services(), candidates, control);
    EXPECT_THAT(movedNames(), ElementsAre("a", "b"));
    EXPECT_THAT(outcome.failureLines, IsEmpty()) << "the third was not tried";
    EXPECT_TRUE(outcome.recordWritten);
    EXPECT_EQ(disk.recorded(), outcome.moved);
}

TEST_F(MoveToTrash, TouchesNothingWhenItIsStoppedBeforeItBegins) {
    control.stop(std::chrono::hours(1)); // there is nothing to wait for
    outcome = moveToTrash(disk.services(), candidates, control);
    EXPECT_THAT(disk.log->calls(), IsEmpty());
}

TEST_F(MoveToTrash, ListsEveryCandidateThatMayNotBeMoved) {
    disk.failures = {{"/l/c", "it was replaced"}, {"/l/a", "it no longer exists"}};
    EXPECT_THAT(validationFailureLines(disk.services(), candidates),
                ElementsAre("a: it no longer exists", "c: it was replaced"));
    EXPECT_EQ(disk.log->count("cleanup.validate"), 3);
    disk.failures.clear();
    EXPECT_THAT(validationFailureLines(disk.services(), candidates), IsEmpty());
}

} // namespace

} // namespace vantry
