#include "cleanup/finding/FolderQuestions.h"

#include "cleanup/finding/CleanupScanner.h"
#include "cleanup/finding/ScanStates.h"
#include "tests/cleanup/finding/ScanFixture.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <thread>
#include <tuple>

namespace vantry::CleanupScanner {
namespace {

using namespace std::chrono_literals;

/// A user who is asked about every folder, and answers when the test says so.
struct User {
    std::mutex mutex;
    std::condition_variable changed;
    std::map<std::filesystem::path, FolderAccess> answers;
    std::map<std::filesystem::path, int> asked;

    void answer(const std::filesystem::path& folder, FolderAccess access) {
        const std::lock_guard lock(mutex);
        answers[folder] = access;
        changed.notify_all();
    }
    FolderAccess open(const std::filesystem::path& folder) {
        std::unique_lock lock(mutex);
        ++asked[folder];
        changed.notify_all();
        changed.wait(lock, [&] { return answers.contains(folder); });
        return answers[folder];
    }
    void waitUntilAsked(const std::filesystem::path& folder) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return asked[folder] > 0; });
    }
};

class FolderQuestionsTest : public testing::Test, public ScanFixture {
protected:
    // The thread that asks ends with the last answer.
    ~FolderQuestionsTest() override {
        for (const auto& folder : folders)
            user->answer(folder, FolderAccess::readable);
    }

    const std::shared_ptr<User> user = std::make_shared<User>();
    const std::vector<std::filesystem::path> folders{directory("Downloads"), directory("Backups")};
    const std::shared_ptr<FolderQuestions> shared =
        FolderQuestions::create([user = user](const auto& folder) { return user->open(folder); });
    FolderQuestions& questions = *shared;

    CleanupScanState stateOf(const std::filesystem::path& folder) {
        return accessState(workers, std::vector{folder}, budget.deadline, &questions);
    }
};

TEST_F(FolderQuestionsTest, WaitForTheUsersAnswer) {
    std::atomic<bool> waited = false;
    std::thread reader([&] {
        for (const auto& folder : folders) {
            user->waitUntilAsked(folder);
            std::this_thread::sleep_for(20ms); // in which nothing may go on
            EXPECT_FALSE(waited) << folder;
            user->answer(folder, FolderAccess::readable);
        }
    });
    questions.ask(folders, 1min, nullptr);
    waited = true;
    reader.join();
    EXPECT_EQ(stateOf(folders[0]), CleanupScanState::checked);
}

TEST_F(FolderQuestionsTest, ARefusalIsFolderAccessNeededUntilAccessIsGrantedLater) {
    user->answer(folders[0], FolderAccess::unreadable);
    user->answer(folders[1], FolderAccess::readable);
    questions.ask(folders, 1min, nullptr);
    EXPECT_EQ(stateOf(folders[0]), CleanupScanState::permissionNeeded);
    EXPECT_EQ(stateOf(folders[1]), CleanupScanState::checked);
    user->answer(folders[0], FolderAccess::readable);
    EXPECT_EQ(stateOf(folders[0]), CleanupScanState::checked);
}

TEST_F(FolderQuestionsTest, WhileAQuestionIsOpenOnlyAWorkerExaminesTheFolder) {
    questions.ask(folders, 0ms, nullptr);
    user->waitUntilAsked(folders[0]);
    EXPECT_EQ(questions.access(folders[0]), FolderAccess::unknown);
    EXPECT_EQ(questions.access(folders[1]), FolderAccess::unknown); // it comes after the other
    workers.hung.insert(folders[0]);
    EXPECT_EQ(stateOf(folders[0]), CleanupScanState::unavailable);
    EXPECT_EQ(user->asked[folders[0]], 1);
}

TEST_F(FolderQuestionsTest, AreAskedOnce) {
    questions.ask(folders, 0ms, nullptr); // not answered in time
    questions.ask(folders, 24h, nullptr); // would wait for ever
    user->waitUntilAsked(folders[0]);
    for (const auto& folder : folders)
        user->answer(folder, FolderAccess::readable);
    user->waitUntilAsked(folders[1]);
    EXPECT_EQ(user->asked[folders[0]], 1);
    EXPECT_EQ(user->asked[folders[1]], 1);
}

TEST_F(FolderQuestionsTest, TheEndOfTheApplicationDoesNotWaitForTheUser) {
    const auto stopSwitch = StopSwitch::create();
    ASSERT_TRUE(stopSwitch);
    std::thread end([&] {
        user->waitUntilAsked(folders[0]);
        (*stopSwitch)->stop();
    });
    questions.ask(folders, 24h, stopSwitch->get());
    end.join();
    EXPECT_EQ(questions.access(folders[0]), FolderAccess::unknown);
}

TEST_F(FolderQuestionsTest, DoNotExistWhereTheSystemAsksNothing) {
    EXPECT_EQ(FolderQuestions::create(FolderOpener()), nullptr);
}

TEST_F(FolderQuestionsTest, OtherFoldersAreNotAskedAbout) {
    for (const auto& folder : folders)
        user->answer(folder, FolderAccess::readable);
    questions.ask(folders, 1min, nullptr);
    user->asked.clear();
    const auto other = directory("other");
    EXPECT_EQ(questions.access(other), FolderAccess::readable);
    EXPECT_EQ(questions.access(home() / "missing"), FolderAccess::none);
    EXPECT_EQ(user->asked.size(), 0U);
}

TEST_F(FolderQuestionsTest, AScanAsksBeforeItsWorkersLook) {
    std::vector<std::size_t> lookedBefore;
    environment.questions = FolderQuestions::create([&](const auto&) {
        lookedBefore.push_back(workers.asked.size());
        return FolderAccess::readable;
    });
    std::ignore = scan(environment, workers, {});
    const auto before = std::ranges::count(lookedBefore, 0U);
    EXPECT_GT(before, 10) << "the places of all categories";
    EXPECT_FALSE(workers.asked.empty());
}

} // namespace
} // namespace vantry::CleanupScanner
