#include "cleanup/finding/ScanStates.h"

#include "cleanup/model/CleanupRules.h"
#include "tests/cleanup/finding/ScanFixture.h"
#include "tests/support/ChildProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace vantry::CleanupScanner {
namespace {

using Places = std::vector<std::filesystem::path>;

class ScanStates : public testing::Test, public ScanFixture {
protected:
    // As an ordinary user, since the superuser may read everything.
    CleanupScanState stateAsOrdinaryUser(const Places& places) {
        if (geteuid() != 0)
            return accessState(workers, places, budget.deadline);
        std::filesystem::permissions(home().parent_path(), std::filesystem::perms::all);
        return static_cast<CleanupScanState>(std::stoi(inChildProcess([&]() -> std::string {
            const bool isOther = becomeUser(unknownUser());
            return isOther ? std::to_string(static_cast<int>(accessState(workers, places, budget.deadline))) : "99";
        })));
    }
    std::filesystem::path unreadable(const char* name) {
        const auto folder = directory(name);
        std::filesystem::permissions(folder, std::filesystem::perms::none);
        return folder;
    }
    std::filesystem::path slow(const char* name) {
        const auto folder = directory(name);
        workers.hung.insert(folder);
        return folder;
    }
};

TEST_F(ScanStates, FollowFromThePlacesInTheirOrder) {
    const auto good = directory("good");
    const auto closed = unreadable("closed");
    const auto closedToo = unreadable("closed too");
    const auto late = slow("late");
    const auto missing = home() / "missing";
    const auto aFile = file("file", 4096, {});
    struct Case {
        Places places;
        CleanupScanState state;
    };
    const Case cases[] = {
        {{}, CleanupScanState::notPresent},
        {{good}, CleanupScanState::checked},
        {{missing}, CleanupScanState::notPresent},
        {{aFile}, CleanupScanState::notPresent},
        {{missing, aFile, good}, CleanupScanState::checked},
        {{closed}, CleanupScanState::permissionNeeded},
        {{closed, good}, CleanupScanState::checked},
        {{closed, closedToo}, CleanupScanState::permissionNeeded},
        {{late}, CleanupScanState::unavailable},
        {{late, good}, CleanupScanState::checked},
        {{late, missing}, CleanupScanState::unavailable},
        {{closed, late}, CleanupScanState::permissionNeeded},
        {{late, closed}, CleanupScanState::permissionNeeded},
    };
    for (const auto& [places, state] : cases)
        EXPECT_EQ(stateAsOrdinaryUser(places), state) << testing::PrintToString(places);
}

TEST_F(ScanStates, APlaceThatIsALinkToAFolderCouldNotBeChecked) {
    link("link", directory("elsewhere"));
    EXPECT_EQ(accessState(workers, Places{home() / "link"}, budget.deadline), CleanupScanState::unavailable);
    link("dangling", home() / "nowhere");
    EXPECT_EQ(accessState(workers, Places{home() / "dangling"}, budget.deadline), CleanupScanState::notPresent);
}

TEST_F(ScanStates, WhenTimeIsUpNoPlaceIsExamined) {
    const auto past = deadlineIn(std::chrono::seconds(-1));
    EXPECT_EQ(accessState(workers, Places{directory("good")}, past), CleanupScanState::unavailable);
    EXPECT_EQ(accessState(workers, Places(), past), CleanupScanState::notPresent);
    EXPECT_THAT(workers.asked, testing::IsEmpty());
}

TEST_F(ScanStates, WhenTimeRunsOutAnUnreadablePlaceOutranksOneThatWasNotReached) {
    const auto closed = unreadable("closed");
    const auto late = slow("late");
    const auto good = directory("good");
    // The slow place uses up all the time.
    const auto until = deadlineIn(std::chrono::milliseconds(300));
    budget.deadline = until;
    workers.whileListing = [&](const auto&) {
        while (!hasPassed(until))
            std::this_thread::yield();
    };
    EXPECT_EQ(stateAsOrdinaryUser({closed, late, good}), CleanupScanState::permissionNeeded);
    EXPECT_EQ(accessState(workers, Places{late, good}, until), CleanupScanState::unavailable);
}

TEST_F(ScanStates, EachCategoryHasItsOwnPlaces) {
    for (const auto& row : allCleanupCategories)
        for (const auto& place : approvedRoots(row.value, environment.places)) {
            ScanFixture made;
            made.directory(place.native().starts_with(home().native()) ? place.lexically_relative(home())
                                                                       : made.applications());
            for (const auto& [category, state] : scanStates(made.workers, made.environment, made.budget.deadline)) {
                const auto roots = approvedRoots(category, environment.places);
                // A place inside another one exists when the other does.
                const bool isThere = std::ranges::any_of(roots, [&](const auto& root) {
                    return root == place || place.native().starts_with(root.native() + "/");
                });
                EXPECT_EQ(state, isThere ? CleanupScanState::checked : CleanupScanState::notPresent)
                    << rawValue(category) << " with " << place;
            }
        }
}

TEST_F(ScanStates, TheFourDownloadCategoriesShareOneListing) {
    directory("Downloads");
    const auto states = scanStates(workers, environment, budget.deadline);
    for (const auto category : {CleanupCategory::installer, CleanupCategory::archive,
                                CleanupCategory::interruptedDownload, CleanupCategory::largeDownload})
        EXPECT_EQ(states.at(category), CleanupScanState::checked);
    EXPECT_EQ(std::ranges::count(workers.asked, "list " + (home() / "Downloads").native()), 1);
}

TEST_F(ScanStates, AreDeterminedInOrderUntilOneDeadline) {
    using Category = CleanupCategory;
    std::vector<std::string> expected;
    for (const auto category :
         {Category::installer, Category::deviceBackup, Category::cache, Category::log, Category::crashReport,
          Category::macOSInstaller, Category::orphan, Category::developerBuild, Category::developerCache,
          Category::developerArchive, Category::deviceSoftware}) {
        const auto roots = approvedRoots(category, environment.places);
        for (const auto& root : roots)
            directory(root);
        expected.push_back("list " + roots.front().native()); // it is there, which is enough
    }
    static_cast<void>(scanStates(workers, environment, budget.deadline));
    EXPECT_EQ(workers.asked, expected);
    EXPECT_EQ(std::set(workers.deadlines.begin(), workers.deadlines.end()), std::set{budget.deadline});

    const auto soon = deadlineIn(std::chrono::milliseconds(200));
    workers.afterListing = [&](const auto& folder) {
        while (folder.filename() == "Backup" && !hasPassed(soon))
            std::this_thread::yield();
    };
    for (const auto& [category, state] : scanStates(workers, environment, soon)) {
        const bool isEarly = category == Category::deviceBackup ||
                             approvedRoots(category, environment.places).front() == home() / "Downloads";
        EXPECT_EQ(state, isEarly ? CleanupScanState::checked : CleanupScanState::unavailable) << rawValue(category);
    }
}

TEST_F(ScanStates, ABackupFolderThatIsALinkIsRelocatedAndNotListed) {
    const auto root = approvedRoots(CleanupCategory::deviceBackup, environment.places).front();
    link(root, directory("elsewhere"));
    EXPECT_EQ(scanStates(workers, environment, budget.deadline).at(CleanupCategory::deviceBackup),
              CleanupScanState::relocated);
    EXPECT_FALSE(workers.wasAsked("list " + root.native()));
}

} // namespace
} // namespace vantry::CleanupScanner
