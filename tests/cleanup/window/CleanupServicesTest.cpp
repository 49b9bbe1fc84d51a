#include "cleanup/window/CleanupServices.h"
#include "cleanup/move/CleanupHistory.h"
#include "tests/support/Candidates.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileFacts.h"
#include "tests/support/InterceptedCall.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>

namespace vantry {

namespace {

using testing::IsEmpty;

/// Waits until the condition holds; false if it does not within ten seconds.
template <class Condition>
bool waitFor(Condition condition) {
    for (const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10); !condition();
         std::this_thread::yield())
        if (std::chrono::steady_clock::now() > end)
            return false;
    return true;
}

/// The real services on a home folder of the test's own, with a Trash of its own.
class RealCleanupServices : public testing::Test {
protected:
    CleanupCandidate oldLog(const std::string& name) {
        const auto path = logs / name;
        std::filesystem::create_directories(logs);
        writeFile(path, std::string(100'000, 'x'));
        setModified(path, SystemTime(std::chrono::seconds(1'600'000'000)));
        return {path, name, CleanupCategory::log, "old", allocatedBytes(path), CleanupConfidence::suggested};
    }

    TemporaryFolder folder{std::filesystem::canonical(std::filesystem::temp_directory_path())};
    std::filesystem::path logs = folder / "Library/Logs";
    ScopedEnvironment home{"HOME", folder.path().c_str()};
    ScopedEnvironment data{"XDG_DATA_HOME", (folder / "data").c_str()};
};

TEST_F(RealCleanupServices, UseTheUsersHome) {
    const auto services = systemCleanupServices();
    EXPECT_EQ(services.home, folder.path());
    EXPECT_EQ(services.applications, "/Applications");
}

TEST_F(RealCleanupServices, ValidateAndRecordAFile) {
    const auto services = systemCleanupServices();
    const auto candidate = oldLog("painter.log");
    EXPECT_EQ(services.move.validationFailure(candidate), std::nullopt);
    const std::vector moved{candidate};
    EXPECT_TRUE(services.move.saveHistory(moved, CleanupRecord::startedAt(services.move.now()), RecordVersion::last));
    EXPECT_FALSE(std::filesystem::is_empty(cleanupHistoryFolder(folder.path())));
    writeFile(candidate.url, "another text");
    EXPECT_NE(services.move.validationFailure(candidate), std::nullopt);
}

TEST_F(RealCleanupServices, SyncOnlyTheLastVersionOfARecord) {
    const auto syncsOf = [&](RecordVersion version) {
        return inChildProcess([&] {
            static int syncs = 0;
            if (!interceptCall(SYS_fsync, [](int count) { syncs = count; }))
                return std::string("not intercepted");
            const auto services = systemCleanupServices();
            const std::vector moved{oldLog("painter.log")};
            const bool saved = services.move.saveHistory(moved, CleanupRecord::startedAt(services.move.now()), version);
            return saved ? std::to_string(syncs) : std::string("not saved");
        });
    };
    const auto interim = syncsOf(RecordVersion::interim);
    if (interim == "not intercepted")
        GTEST_SKIP() << "no calls are intercepted here";
    EXPECT_EQ(interim, "0");
    EXPECT_EQ(syncsOf(RecordVersion::last), "2") << "the file, then its folder";
}

TEST_F(RealCleanupServices, MoveAValidatedFile) {
    const auto services = systemCleanupServices();
    const auto candidate = oldLog("painter.log");
    TrashMove moved;
    ASSERT_TRUE(services.move.coordinateMoving(candidate.url, [&](const auto& path) {
        EXPECT_EQ(path, candidate.url);
        moved = services.move.moveValidated(candidate);
    }));
    EXPECT_EQ(moved, (TrashMove{.outcome = TrashMove::Outcome::moved})) << moved.reason;
    EXPECT_FALSE(std::filesystem::exists(candidate.url));
    EXPECT_TRUE(std::filesystem::exists(folder / "data/Trash/files/painter.log"));
}

TEST_F(RealCleanupServices, DoNotMoveAFileThatHasChanged) {
    const auto services = systemCleanupServices();
    const auto candidate = oldLog("painter.log");
    writeFile(candidate.url, "another text");
    const auto moved = services.move.moveValidated(candidate);
    EXPECT_EQ(moved.outcome, TrashMove::Outcome::notMoved);
    EXPECT_EQ(moved.reason, services.move.validationFailure(candidate));
    EXPECT_EQ(readFile(candidate.url), "another text");
    EXPECT_FALSE(std::filesystem::exists(folder / "data/Trash"));
}

// Scans poll a pipe; its other end is closed to end them.
TEST_F(RealCleanupServices, StopScanning) {
    const auto services = systemCleanupServices();
    const auto before = openDescriptorCount();
    services.stopScanning();
    EXPECT_EQ(openDescriptorCount(), before - 1);
}

TEST_F(RealCleanupServices, WithoutDescriptorsThereIsNothingToStop) {
    const auto answer = inChildProcess([] {
        const rlimit nothing{0, 0};
        setrlimit(RLIMIT_NOFILE, &nothing);
        systemCleanupServices().stopScanning();
        return std::string("stopped");
    });
    EXPECT_EQ(answer, "stopped");
}

// Each scan calls a copy of the function, as the window's background block does. Scanning is stopped first, because a
// worker process would be this test program.
TEST_F(RealCleanupServices, AskTheUserAboutFoldersInTheFirstScanOnly) {
    struct Questions {
        std::mutex mutex;
        std::map<std::thread::id, std::set<std::filesystem::path>> asked;
    };
    const auto questions = std::make_shared<Questions>();
    const auto services = systemCleanupServices([questions](const std::filesystem::path& path) {
        const std::lock_guard lock(questions->mutex);
        questions->asked[std::this_thread::get_id()].insert(path);
        return FolderAccess::unreadable;
    });
    services.stopScanning();
    const auto threads = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}); };
    const auto before = threads();
    const auto askedByOthers = [&] {
        const std::lock_guard lock(questions->mutex);
        return std::ranges::count_if(questions->asked, [&](const auto& asked) {
            return asked.first != std::this_thread::get_id() && asked.second.contains(folder / "Downloads");
        });
    };
    for (int scan = 0; scan < 3; ++scan) {
        const auto copy = services.scan;
        const auto report = copy({});
        EXPECT_TRUE(waitFor([&] { return threads() == before; })) << "those that ask have ended";
        EXPECT_EQ(askedByOthers(), 1);
        if (scan > 0) {
            EXPECT_EQ(report.states.at(CleanupCategory::installer), CleanupScanState::permissionNeeded);
        }
    }
}

// Scanning is stopped first, because a worker process would be this test program.
TEST_F(RealCleanupServices, MeasureTheGuideWhereThereIsAHome) {
    const auto services = systemCleanupServices();
    services.stopScanning();
    ASSERT_TRUE(services.measureGuide) << "on Linux";
    EXPECT_FALSE(services.measureGuide([] { return true; }).empty());
    const ScopedEnvironment missing{"HOME", (folder / "missing").c_str()};
    const auto servicesOfNoHome = systemCleanupServices();
    servicesOfNoHome.stopScanning();
    EXPECT_TRUE(servicesOfNoHome.measureGuide([] { return true; }).empty());
}

TEST_F(RealCleanupServices, WithoutAHomeFolderNothingIsCheckedAndNothingMoves) {
    const auto candidate = oldLog("painter.log");
    const ScopedEnvironment missing{"HOME", (folder / "missing").c_str()};
    const auto services = systemCleanupServices();
    const auto report = services.scan({});
    EXPECT_THAT(report.candidates, IsEmpty());
    EXPECT_EQ(report.states.size(), allCleanupCategories.size());
    EXPECT_EQ(report.metrics.size(), allCleanupCategories.size());
    for (const auto& [category, state] : report.states)
        EXPECT_EQ(state, CleanupScanState::unavailable) << rawValue(category);
    for (const auto& [category, metric] : report.metrics)
        EXPECT_EQ(metric, CleanupCategoryMetric()) << rawValue(category);
    EXPECT_TRUE(report.storageSnapshot) << "the volume can be read all the same";
    EXPECT_EQ(services.move.validationFailure(candidate), "the home folder could not be verified");
    const auto moved = services.move.moveValidated(candidate);
    EXPECT_EQ(moved.outcome, TrashMove::Outcome::notMoved);
    EXPECT_EQ(moved.reason, "the home folder could not be verified");
    EXPECT_FALSE(services.move.saveHistory(std::vector{candidate}, CleanupRecord::startedAt(services.move.now()),
                                           RecordVersion::last));
    EXPECT_TRUE(std::filesystem::exists(candidate.url));
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
}

} // namespace

} // namespace vantry
