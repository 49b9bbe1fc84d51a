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
        outcome = moveToTrash(fresh.services(), candidates);
        EXPECT_EQ(movedNames(), moved);
        EXPECT_EQ(outcome.failureLines, failures);
        EXPECT_EQ(fresh.log->count("cleanup.coordinate"), 3);
        EXPECT_EQ(fresh.log->count("cleanup.saveHistory"), moved.empty() ? 0 : 1);
        EXPECT_EQ(outcome.recordWritten, !moved.empty());
        EXPECT_EQ(fresh.recorded, outcome.moved);
    }
}

TEST_F(MoveToTrash, AnAccessorThatIsNeverCalledIsAFailure) {
    auto services = disk.services();
    services.coordinateMoving = [](const auto&, const auto&) { return Result<void>(); };
    outcome = moveToTrash(services, candidates);
    EXPECT_THAT(movedNames(), IsEmpty());
    EXPECT_EQ(outcome.failureLines.size(), 3);
    EXPECT_EQ(disk.log->count("cleanup.moveToTrash"), 0);
}

TEST_F(MoveToTrash, SaysWhenTheRecordCouldNotBeWritten) {
    disk.historyCanBeWritten = false;
    outcome = moveToTrash(disk.services(), candidates);
    EXPECT_THAT(movedNames(), ElementsAre("a", "b", "c"));
    EXPECT_FALSE(outcome.recordWritten);
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
