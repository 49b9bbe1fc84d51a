// Workers in a file system that does not answer. Not even SIGKILL ends them.

#include "cleanup/finding/CleanupScanner.h"
#include "cleanup/finding/GuideMeasurement.h"
#include "cleanup/measuring/WorkerHost.h"
#include "tests/cleanup/measuring/WorkerHostFixture.h"
#include "tests/support/RecordedPolls.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

using namespace std::chrono_literals;

/// A mounted file system that hangs, until it is let go of: then every question to it fails.
class HungMount {
public:
    /// `control` is an empty folder for the kernel's list of such mounts.
    HungMount(const fs::path& point, const char* hangsIn, const fs::path& control) : point_(point), control_(control) {
        const bool controllable = mount("none", control.c_str(), "fusectl", 0, nullptr) == 0;
        if (!controllable || access("/dev/fuse", R_OK | W_OK) != 0)
            return;
        auto server = ChildProcess::start(OMBREL_HANGING_FILE_SYSTEM, {point, hangsIn}, ChildOutput::pipe);
        if (!server)
            return;
        server_ = std::move(*server);
        pollfd event{server_->output(), POLLIN, 0};
        std::array<char, 16> line{};
        constexpr int patience = 30'000; // milliseconds
        isMounted_ = poll(&event, 1, patience) == 1 && read(server_->output(), line.data(), line.size()) > 0;
        struct stat facts = {};
        if (isMounted_ && stat(point.c_str(), &facts) == 0) // it answers for the mount point itself
            connection_ = std::to_string(minor(facts.st_dev));
    }
    HungMount(const HungMount&) = delete;
    HungMount& operator=(const HungMount&) = delete;
    ~HungMount() {
        if (!connection_.empty())
            letGo();
        if (isMounted_)
            umount2(point_.c_str(), MNT_DETACH);
        umount2(control_.c_str(), MNT_DETACH);
        if (server_) {
            server_->sendSignal(SIGKILL);
            static_cast<void>(endOf(*server_));
        }
    }

    [[nodiscard]] bool isMounted() const { return !connection_.empty(); }
    void letGo() const { std::ofstream(control_ / connection_ / "abort") << '1'; }

private:
    fs::path point_;
    fs::path control_;
    std::string connection_;
    std::optional<ChildProcess> server_;
    bool isMounted_ = false;
};

// Each question takes about a second.
class HungMounts : public WorkerHostFixture {
protected:
    HungMounts() : WorkerHostFixture(OMBREL_EXECUTABLE) {
        for (const char* name : {"tree", "control"})
            fs::create_directory(root / name);
        fs::create_directory(root / "tree/mount");
        writeFile(root / "tree/file", "1");
    }

    /// What `ask` answers, once it has been seen that a worker is left behind that ends when the mount is let go of.
    template <class Ask>
    void expectNothing(const char* hangsIn, Ask ask, std::chrono::milliseconds longest = 950ms) {
        HungMount mount(point, hangsIn, root / "control");
        if (!mount.isMounted())
            GTEST_SKIP() << "no right, or no way, to mount a file system of one's own";
        RecordedPolls::forget();
        const auto answer = ask();
        EXPECT_EQ(answer, decltype(answer){}) << hangsIn;
        EXPECT_LE(RecordedPolls::waitedInVain(), longest) << hangsIn;
        EXPECT_EQ(childCount(), 2) << hangsIn;
        mount.letGo();
        waitUntilChildrenAre(1); // the server
        EXPECT_EQ(childCount(), 1) << hangsIn;
    }

    const fs::path point = root / "tree/mount";
};

} // namespace

TEST_F(HungMounts, CostAQuestionNoMoreThanItsBound) {
    for (const char* hangsIn : {"getattr", "readdir"}) {
        expectNothing(hangsIn, [&] { return host.directoryMetrics(point / "folder", farAway()); });
        if (IsSkipped())
            return;
        expectNothing(hangsIn, [&] { return host.directoryMetrics(point, farAway()); });
        expectNothing(hangsIn, [&] { return host.shallowChildren(point / "folder", farAway()); });
    }
    expectNothing("readdir", [&] { return host.shallowChildren(point, farAway()); });
}

TEST_F(HungMounts, InsideATreeAreNotCounted) {
    for (const char* hangsIn : {"getattr", "readdir"}) {
        HungMount mount(point, hangsIn, root / "control");
        if (!mount.isMounted())
            GTEST_SKIP() << "no right, or no way, to mount a file system of one's own";
        EXPECT_GT(completeAnswer([&] { return host.directoryMetrics(root / "tree", farAway()); }).size, 0) << hangsIn;
        ChildrenMetrics children;
        for (int attempt = 0; attempt < 20 && !children.whole.complete; ++attempt)
            children = host.childrenMetrics(root / "tree", farAway());
        EXPECT_TRUE(children.whole.complete) << hangsIn;
        EXPECT_EQ(childCount(), 1) << "the server";
    }
    EXPECT_EQ(host.shallowChildren(root / "tree", farAway()).urls.size(), 2U);
}

TEST_F(HungMounts, DoNotBlockOtherQuestions) {
    fs::create_directory(root / "other");
    writeFile(root / "other/file", "1");
    expectNothing(
        "readdir",
        [&] {
            const auto answer = host.directoryMetrics(point, farAway());
            EXPECT_TRUE(completeAnswer([&] { return host.directoryMetrics(root / "other", farAway()); }).complete);
            EXPECT_TRUE(completeAnswer([&] { return host.shallowChildren(root / "tree", farAway()); }).complete);
            return answer;
        },
        1min);
}

TEST_F(HungMounts, CostOnePropertyListItsBoundAndLeaveTheOthersReadable) {
    writeFile(root / "list", "<plist><dict><key>Name</key><string>a</string></dict></plist>");
    expectNothing(
        "getattr",
        [&] {
            const std::vector<fs::path> files{root / "list", point / "folder/file", root / "list"};
            const std::vector<std::string> keys{"Name"};
            auto answer = host.propertyListTexts(files, keys, farAway());
            EXPECT_FALSE(answer.complete);
            EXPECT_TRUE(answer.texts.front() && answer.texts.back());
            return answer.texts[1];
        },
        1250ms);
}

TEST_F(HungMounts, LeaveAScanTruthfulAndBounded) {
    struct Case {
        const char* mount;
        const char* hangsIn;
        CleanupCategory category;
        CleanupScanState state;
    };
    // The mount is a place, lies on the path to one, in one, behind a link in place of one, or holds applications.
    std::vector<Case> cases{
        {"home/Library/Logs", "getattr", CleanupCategory::log, CleanupScanState::checked},
        {"home/Library/Caches/app", "readdir", CleanupCategory::cache, CleanupScanState::limited},
        {"behind a link", "getattr", CleanupCategory::installer, CleanupScanState::unavailable},
        {"home/Applications", "getattr", CleanupCategory::orphan, CleanupScanState::limited},
    };
    if (std::getenv("OMBREL_EVERY_HUNG_MOUNT")) { // half a minute more
        cases.push_back({"home/Library", "getattr", CleanupCategory::cache, CleanupScanState::unavailable});
        cases.push_back({"home/Library/Caches", "readdir", CleanupCategory::cache, CleanupScanState::unavailable});
    }
    for (const auto& [mountPoint, hangsIn, category, state] : cases) {
        SCOPED_TRACE(std::string(mountPoint) + " " + hangsIn);
        const TemporaryFolder made;
        const fs::path home = made / "home";
        fs::create_directories(home / "Library/Saved Application State/com.example.gone.savedState");
        fs::create_directories(home / "Library/Caches");
        fs::create_directories(home / "Library/Logs");
        fs::create_directories(made / mountPoint);
        if (category == CleanupCategory::installer)
            fs::create_directory_symlink(made / mountPoint / "folder", home / "Downloads");
        HungMount mount(made / mountPoint, hangsIn, root / "control");
        if (!mount.isMounted())
            GTEST_SKIP() << "no right, or no way, to mount a file system of one's own";
        const ScanEnvironment environment{
            .places = {.home = home, .applications = root / "none", .systemApplications = root / "none"},
            .workers = {OMBREL_EXECUTABLE, temporary},
            .now = [] { return SystemTime(std::chrono::system_clock::now()); }};
        const auto begin = std::chrono::steady_clock::now();
        const auto report = CleanupScanner::scan(environment, host, {});
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
        EXPECT_EQ(title(report.states.at(category)), title(state));
        for (const auto& candidate : report.candidates)
            EXPECT_FALSE(candidate.url.native().starts_with((made / mountPoint).native())) << candidate.url;
        if (category == CleanupCategory::orphan) {
            EXPECT_TRUE(report.candidates.empty()) << "who knows what its application is called";
        }
        mount.letGo();
        waitUntilChildrenAre(1);
        EXPECT_EQ(childCount(), 1);
    }
}

TEST_F(HungMounts, DoNotHoldUpTheGuide) {
    fs::create_directories(root / "home/.var");
    HungMount mount(root / "home/.var", "getattr", root / "control");
    if (!mount.isMounted())
        GTEST_SKIP() << "no right, or no way, to mount a file system of one's own";
    CleanupPlaces places{.home = root / "home"};
    places.system = HostSystem::linuxDesktop;
    places.root = root / "none";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(
        CleanupScanner::measureGuide(host, places, SystemTime(), deadlineIn(15s), [] { return true; }).empty());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
    mount.letGo();
    waitUntilChildrenAre(1);
    EXPECT_EQ(childCount(), 1);
}

TEST_F(HungMounts, StillHaveTheirWorkersReapedAfterTheHostIsGone) {
    HungMount mount(point, "readdir", root / "control");
    if (!mount.isMounted())
        GTEST_SKIP() << "no right, or no way, to mount a file system of one's own";
    EXPECT_EQ(WorkerHost({OMBREL_EXECUTABLE, temporary}).directoryMetrics(point, farAway()), DirectoryMetrics{});
    EXPECT_EQ(childCount(), 2);
    mount.letGo();
    waitUntilChildrenAre(1);
    EXPECT_EQ(childCount(), 1);
}

} // namespace vantry
