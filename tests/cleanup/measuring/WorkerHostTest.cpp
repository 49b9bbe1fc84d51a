#include "cleanup/measuring/WorkerHost.h"
#include "cleanup/measuring/DiskUsage.h"

#include "cleanup/measuring/WorkerPayload.h"
#include "tests/cleanup/measuring/WorkerHostFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/EndedChild.h"
#include "tests/support/RecordedPolls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

using namespace std::chrono_literals;

/// Ombrel's own workers.
class RealWorkers : public WorkerHostFixture {
protected:
    RealWorkers() : WorkerHostFixture(OMBREL_EXECUTABLE) {}
};

/// A program in the place of Ombrel's executable.
class Workers : public WorkerHostFixture {
protected:
    Workers() : WorkerHostFixture(OMBREL_WORKER_DOUBLE) {}
};

/// No program at all.
class NoWorkers : public WorkerHostFixture {
protected:
    NoWorkers() : WorkerHostFixture("/nowhere/ombrel") {}
};

#if defined(OMBREL_ADDRESS_SANITIZER) || defined(OMBREL_THREAD_SANITIZER)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

std::vector<std::string> lines(const fs::path& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// From a line like "SigIgn:\t0000000180000000". The two signals of the C library are left out.
std::uint64_t signalsIn(const std::string& line, const std::string& name) {
    constexpr std::uint64_t ofTheLibrary = 0x180000000;
    EXPECT_EQ(line.substr(0, name.size()), name);
    return std::stoull(line.substr(std::min(name.size(), line.size())), nullptr, 16) & ~ofTheLibrary;
}

} // namespace

TEST_F(RealWorkers, MeasureAFolderAsItIsMeasuredInProcess) {
    const fs::path folder = root / "tree";
    fs::create_directories(folder / "a/b/.hidden");
    writeFile(folder / "a/one", std::string(10'000, '1'));
    writeFile(folder / "a/b/.hidden/two", "2");
    fs::create_symlink("/etc", folder / "link");
    auto expected = CleanupScanner::directoryMetricsInProcess(folder, farAway());
    ASSERT_TRUE(expected.complete && expected.newestModificationDate);
    EXPECT_GE(expected.size, 10'000);
    // The payload holds the date as a number of seconds.
    expected.newestModificationDate = timeFromSecondsSince1970(secondsSince1970(*expected.newestModificationDate));
    EXPECT_EQ(completeAnswer([&] { return host.directoryMetrics(folder, farAway()); }), expected);
}

TEST_F(RealWorkers, MeasureTheUseOfADiskAsItIsMeasuredInProcess) {
    const fs::path place = root / "place";
    fs::create_directories(place / "below");
    writeFile(place / "image.vdi", std::string(10'000, 'x'));
    writeFile(place / "image.txt", std::string(10'000, 'x'));
    fs::create_hard_link(place / "image.vdi", place / "below/again.vdi");
    const std::vector<std::string> endings{".vdi"};
    for (const auto& only : {std::vector<std::string>(), endings}) {
        const auto expected = CleanupScanner::diskUsageInProcess(place, only, farAway());
        EXPECT_TRUE(expected.complete);
        EXPECT_EQ(completeAnswer([&] { return host.diskUsage(place, only, farAway()); }), expected);
    }
    EXPECT_EQ(host.diskUsage(place / "missing", {}, farAway()), DirectoryMetrics());
}

TEST_F(RealWorkers, MeasureTheFoldersInAFolderAsEachIsMeasuredByItself) {
    const fs::path folder = root / "tree";
    const std::vector<std::string> names{"plain", ".hidden", "caf\xe9", "a\nb c"};
    for (const auto& name : names) {
        fs::create_directories(folder / name / "inside");
        writeFile(folder / name / "inside/file", std::string(1 + 5'000 * name.size(), '1'));
    }
    writeFile(folder / "file", "1");
    fs::create_directory_symlink("/etc", folder / "link");
    ChildrenMetrics answer;
    for (int attempt = 0; attempt < 20 && !answer.whole.complete; ++attempt)
        answer = host.childrenMetrics(folder, farAway());
    EXPECT_EQ(answer.whole, completeAnswer([&] { return host.directoryMetrics(folder, farAway()); }));
    EXPECT_EQ(answer.children.size(), names.size());
    for (const auto& name : names)
        EXPECT_EQ(answer.children.at(name),
                  completeAnswer([&] { return host.directoryMetrics(folder / name, farAway()); }))
            << name;
}

TEST_F(RealWorkers, MeasureAndListAnEmptyFolder) {
    fs::create_directory(root / "empty");
    EXPECT_EQ(completeAnswer([&] { return host.directoryMetrics(root / "empty", farAway()); }),
              (DirectoryMetrics{.complete = true}));
    EXPECT_EQ(completeAnswer([&] { return host.shallowChildren(root / "empty", farAway()); }),
              (ShallowChildren{.complete = true}));
}

TEST_F(RealWorkers, MeasureAndListNeitherLinksNorMissingItems) {
    fs::create_directory(root / "folder");
    writeFile(root / "folder/file", "1");
    fs::create_directory_symlink(root / "folder", root / "link");
    fs::create_symlink(root / "folder/file", root / "linkToFile");
    fs::create_symlink(root / "nowhere", root / "dangling");
    for (const char* name : {"link", "linkToFile", "dangling", "missing", "folder/file/below", "missing/below"}) {
        EXPECT_EQ(host.directoryMetrics(root / name, farAway()), DirectoryMetrics{}) << name;
        EXPECT_EQ(host.shallowChildren(root / name, farAway()), ShallowChildren{}) << name;
        EXPECT_EQ(host.childrenMetrics(root / name, farAway()), ChildrenMetrics{}) << name;
    }
    EXPECT_EQ(host.shallowChildren(root / "folder/file", farAway()), ShallowChildren{});
    EXPECT_EQ(host.shallowChildren("", farAway()), ShallowChildren{});
    EXPECT_EQ(host.directoryMetrics("", farAway()), DirectoryMetrics{});
}

TEST_F(RealWorkers, ListVisibleNamesOfEveryKindInTheirFolder) {
    const fs::path folder = root / "folder";
    fs::create_directory(folder);
    std::vector<fs::path> expected;
    for (const std::string& name :
         {std::string("plain"), std::string("Größe"), std::string("caf\xe9"), std::string("\xff\xfe"),
          std::string("a\"b\\c\nd"), std::string(255, 'n'), std::string(255, '\xe4'), std::string("UPPER lower")}) {
        writeFile(folder / name, "");
        expected.push_back(folder / name);
    }
    fs::create_directory(folder / "sub");
    expected.push_back(folder / "sub");
    fs::create_symlink("nowhere", folder / "link");
    expected.push_back(folder / "link");
    for (const char* hidden : {".hidden", "...", ".\xff"})
        writeFile(folder / hidden, "");

    auto answer = completeAnswer([&] { return host.shallowChildren(folder, farAway()); });
    EXPECT_TRUE(answer.complete);
    std::ranges::sort(answer.urls);
    std::ranges::sort(expected);
    EXPECT_EQ(answer.urls, expected);
}

TEST_F(RealWorkers, AreAskedAboutMorePathsThanAProgramTakesAsArguments) {
    EXPECT_EQ(inChildProcess([&]() -> std::string {
                  const rlimit stack = {4 << 20, 4 << 20}; // a quarter of it is for arguments
                  if (setrlimit(RLIMIT_STACK, &stack) != 0)
                      return "no limit";
                  const std::vector<fs::path> files(500, "/" + std::string(3900, 'f'));
                  return host.propertyListTexts(files, std::vector<std::string>{"Name"}, farAway()).complete
                             ? "complete"
                             : "not complete";
              }),
              "complete");
}

TEST_F(RealWorkers, AnswerTenThousandTimesAndLeaveNothing) {
    // A quarter of a minute; sanitizers, and a machine that is busy, get through fewer in the time that there is.
    constexpr int rounds = 5'000; // of two answers each
    const auto limit = deadlineIn(sanitized ? 4s : 20s);
    fs::create_directory(root / "folder");
    writeFile(root / "folder/file", "1");
    EXPECT_TRUE(completeAnswer([&] { return host.directoryMetrics(root / "folder", farAway()); }).complete);
    const auto before = resources();
    int done = 0;
    int complete = 0;
    for (; done < rounds && !hasPassed(limit); ++done) {
        complete += host.directoryMetrics(root / "folder", farAway()).complete ? 1 : 0;
        complete += host.shallowChildren(root / "folder", farAway()).complete ? 1 : 0;
        ASSERT_FALSE(hasChildren()) << "after " << done;
        ASSERT_EQ(resources(), before) << "after " << done;
    }
    EXPECT_GE(done, 3);
    if (done < rounds)
        std::cout << "time was up after " << 2 * done << " answers\n";
    EXPECT_GE(complete, done); // half of them may have been late on a machine that is very busy
}

TEST_F(NoWorkers, AreNeededForAFile) {
    writeFile(root / "file", std::string(5000, '1'));
    const auto answer = host.directoryMetrics(root / "file", farAway());
    EXPECT_EQ(answer, CleanupScanner::directoryMetricsInProcess(root / "file", farAway()));
    EXPECT_TRUE(answer.complete);
    EXPECT_GE(answer.size, 5000);
    EXPECT_EQ(host.directoryMetrics(root / "file", std::chrono::steady_clock::now()), answer);
}

TEST_F(NoWorkers, AnswerNothing) {
    EXPECT_EQ(host.directoryMetrics(root.path(), farAway()), DirectoryMetrics{});
    EXPECT_EQ(host.shallowChildren(root.path(), farAway()), ShallowChildren{});
    EXPECT_EQ(host.childrenMetrics(root.path(), farAway()), ChildrenMetrics{});
}

TEST_F(Workers, AreNotStartedForAFileOrWhenTimeIsUp) {
    const fs::path asked = folder("answers");
    RecordedPolls::forget();
    EXPECT_EQ(host.directoryMetrics(asked, std::chrono::steady_clock::now()), DirectoryMetrics{});
    EXPECT_EQ(host.shallowChildren(asked, std::chrono::steady_clock::now()), ShallowChildren{});
    EXPECT_EQ(host.directoryMetrics(asked, Deadline::min()), DirectoryMetrics{});
    EXPECT_EQ(host.childrenMetrics(asked, std::chrono::steady_clock::now()), ChildrenMetrics{});
    EXPECT_EQ(host.childrenMetrics(asked, Deadline::min()), ChildrenMetrics{});
    EXPECT_EQ(host.shallowChildren(asked, Deadline::min()), ShallowChildren{});
    writeFile(asked / "file", "1");
    EXPECT_TRUE(host.directoryMetrics(asked / "file", farAway()).complete);
    EXPECT_EQ(lines(asked / "started"), std::vector<std::string>());
    EXPECT_EQ(RecordedPolls::count(), 0) << "the end of a worker would be waited for";
}

TEST_F(Workers, AreGivenAMomentBeyondTheirTimeToAnswer) {
    writeFile(root / "slow", "#!/bin/sh\nsleep 0.5\necho '{\"size\":512,\"complete\":false}'\n");
    fs::permissions(root / "slow", fs::perms::owner_all);
    WorkerHost slow({root / "slow", temporary});
    DirectoryMetrics answer;
    for (int attempt = 0; attempt < 20 && answer.size == 0; ++attempt) // it may be later on a machine that is busy
        answer = slow.directoryMetrics(folder("answers"), farAway());
    EXPECT_EQ(answer.size, 512);
}

TEST_F(Workers, AreStartedOnceForAQuestion) {
    static_cast<void>(host.directoryMetrics(folder("writes-garbage"), farAway()));
    EXPECT_LE(lines(folder("writes-garbage") / "started").size(), 1U);
    static_cast<void>(host.shallowChildren(folder("writes-nothing"), farAway()));
    EXPECT_LE(lines(folder("writes-nothing") / "started").size(), 1U);
}

TEST_F(Workers, ThatWriteMoreThanAPipeHoldsAreReadWhileTheyRun) {
    EXPECT_TRUE(completeAnswer([&] {
                    return host.directoryMetrics(folder("writes-much-more-than-a-pipe-holds"), farAway());
                }).complete);
}

TEST_F(Workers, MayLeaveBehindAProcessThatHoldsTheirOutput) {
    const fs::path asked = folder("leaves-a-process-behind");
    const auto answer = completeAnswer([&] { return host.directoryMetrics(asked, farAway()); });
    for (const auto& process : lines(asked / "process"))
        kill(std::stoi(process), SIGKILL);
    EXPECT_TRUE(answer.complete);
}

TEST_F(Workers, InheritThreeDescriptorsAndNoSignalSettings) {
    // None of these may reach the worker: a descriptor without close-on-exec, a blocked signal, an ignored signal.
    const int inherited = dup(STDOUT_FILENO);
    ASSERT_GT(inherited, STDERR_FILENO);
    const auto handler = std::signal(SIGHUP, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigaddset(&blocked, SIGUSR1);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    const fs::path asked = folder("says-what-it-has");
    const bool measured = completeAnswer([&] { return host.directoryMetrics(asked, farAway()); }).complete;
    const auto measuring = lines(asked / "state");
    fs::remove(asked / "state");
    const bool listed = completeAnswer([&] { return host.shallowChildren(asked, farAway()); }).complete;
    const auto listing = lines(asked / "state");
    sigprocmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGHUP, handler);
    close(inherited);

    ASSERT_TRUE(measured && listed);
    for (const auto& [has, output] : {std::pair(measuring, "1 pipe:["), {listing, "1 /dev/nu"}}) {
        ASSERT_GE(has.size(), 6U);
        EXPECT_EQ(has[0], "0 /dev/null");
        EXPECT_TRUE(has[1].starts_with(output)) << has[1];
        EXPECT_EQ(has[2], "2 /dev/null");
        EXPECT_TRUE(has[3].starts_with("Threads:")) << "and no further descriptor";
        EXPECT_EQ(signalsIn(has[4], "SigBlk:"), 0U);
        EXPECT_EQ(signalsIn(has[5], "SigIgn:"), 0U);
    }
}

TEST_F(Workers, RunTheExecutableOfThisProcessEvenIfItsFileWasRemovedOrReplaced) {
    for (const char* replacement : {"", "/bin/false"}) {
        const fs::path copy = root / "copy of ombrel";
        fs::copy_file(OMBREL_WORKER_DOUBLE, copy, fs::copy_options::overwrite_existing);
        bool answered = false;
        for (int attempt = 0; attempt < 10 && !answered; ++attempt) { // it may be late on a machine that is busy
            fs::copy_file(OMBREL_WORKER_DOUBLE, copy, fs::copy_options::overwrite_existing);
            const auto ended = endOf(copy, {"--measure-without-own-file", folder("answers"), replacement});
            answered = ended.status == 0;
            EXPECT_EQ(fs::exists(copy), *replacement != 0);
        }
        EXPECT_TRUE(answered) << replacement;
    }
}

} // namespace vantry
