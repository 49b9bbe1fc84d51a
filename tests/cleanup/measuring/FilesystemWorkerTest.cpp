#include "cleanup/measuring/FilesystemWorker.h"

#include "base/UniqueFd.h"
#include "cleanup/measuring/WorkerPayload.h"
#include "platform/Sandbox.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/EndedChild.h"
#include "tests/support/FileFacts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vantry {

namespace {

namespace fs = std::filesystem;

using CleanupScanner::runFilesystemWorkerIfRequested;
using Arguments = std::vector<std::string>;

const fs::path executable = OMBREL_EXECUTABLE;
#if defined(OMBREL_ADDRESS_SANITIZER) || defined(OMBREL_THREAD_SANITIZER)
constexpr bool isSanitized = true; // which needs the address space
#else
constexpr bool isSanitized = false;
#endif
const EndedChild silent{.status = 0, .output = ""};

/// A folder to look at, and one for the output.
class FilesystemWorker : public testing::Test {
protected:
    FilesystemWorker() {
        fs::create_directory(folder);
        writeFile(folder / "one", "1");
        writeFile(folder / ".hidden", "2");
        setModified(folder / "one", SystemTime(std::chrono::milliseconds(1'700'000'000'250)));
        setModified(folder / ".hidden", SystemTime(std::chrono::seconds(1'600'000'000)));
    }

    [[nodiscard]] EndedChild list(const fs::path& outputFile) const {
        return endOf(executable, {"--shallow-children-worker", folder, outputFile});
    }
    /// What the worker returns and prints, in a process of its own, since a worker gives up rights.
    [[nodiscard]] std::string answerTo(const Arguments& arguments) const {
        return inChildProcess([&] {
            const fs::path written = root / "written";
            const int fd = open(written.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
            if (fd < 0 || dup2(fd, STDOUT_FILENO) < 0)
                return std::string("no output");
            const bool asked = runFilesystemWorkerIfRequested(arguments);
            return (asked ? "asked " : "not asked ") + readFile(written);
        });
    }
    const TemporaryFolder root;
    const fs::path folder = root / "folder";
    const fs::path output = root / "output.json";
    const std::string listing = R"({"names":["one"],"complete":true})";
};

} // namespace

TEST_F(FilesystemWorker, IsNotRunWithoutAFlagInFront) {
    for (const auto& arguments : {Arguments{}, Arguments{"--show-cleanup"}, Arguments{folder.native(), "1"},
                                  Arguments{"--show-cleanup", "--shallow-children-worker", folder, output}})
        EXPECT_FALSE(runFilesystemWorkerIfRequested(arguments)) << testing::PrintToString(arguments);
    EXPECT_FALSE(fs::exists(output));
}

TEST_F(FilesystemWorker, ReturnsTrueOnceItHasDoneItsJob) {
    const std::string measured = answerTo({"--directory-metrics-worker", folder, "3"});
    EXPECT_EQ(measured.substr(0, 14), R"(asked {"size":)");
    EXPECT_TRUE(decodedDirectoryMetrics(measured.substr(6))) << measured;
    EXPECT_EQ(answerTo({"--shallow-children-worker", folder, output}), "asked ");
    EXPECT_EQ(readFile(output), listing);
}

TEST_F(FilesystemWorker, ReturnsTrueAndWritesNothingWhenItCannotDoItsJob) {
    const Arguments cases[] = {
        {"--directory-metrics-worker"},
        {"--directory-metrics-worker", folder},
        {"--directory-metrics-worker", folder, "0"},
        {"--directory-metrics-worker", folder, "abc"},
        {"--directory-metrics-worker", folder, "-1"},
        {"--directory-metrics-worker", folder, "1", "2"},
        {"--children-metrics-worker", folder},
        {"--children-metrics-worker", folder, "abc"},
        {"--shallow-children-worker"},
        {"--shallow-children-worker", folder},
        {"--shallow-children-worker", folder, output, "more"},
        {"--shallow-children-worker", folder, root / "missing/output.json"},
        {"--shallow-children-worker", folder, ""},
    };
    for (const auto& arguments : cases) {
        EXPECT_EQ(answerTo(arguments), "asked ") << testing::PrintToString(arguments);
        EXPECT_EQ(endOf(executable, arguments), silent) << testing::PrintToString(arguments);
        EXPECT_FALSE(fs::exists(output));
    }
}

TEST_F(FilesystemWorker, GivesUpTheRightsAndTheMemoryThatItDoesNotNeed) {
    if (inChildProcess([] { return std::string(giveUpChangingFiles() ? "protected" : "unprotected"); }) != "protected")
        GTEST_SKIP() << "a system without such protection";
    constexpr rlim_t mebibyte = 1 << 20;
    const auto sizeOfThisProcess = [] {
        rlim_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    };
    const struct {
        Arguments arguments;
        rlim_t memory; ///< on top of what it has
    } jobs[] = {
        {{"--directory-metrics-worker", folder, "3"}, 0},
        {{"--children-metrics-worker", folder, "3"}, 0},
        {{"--disk-usage-worker", folder, "3"}, 256 * mebibyte},
        {{"--shallow-children-worker", folder, output}, 0},
        {{"--property-list-worker", "1", "Name", folder / "one"}, 64 * mebibyte},
        {{"--bundle-identifiers-worker", folder, folder}, 256 * mebibyte},
    };
    for (const auto& [arguments, memory] : jobs)
        EXPECT_EQ(inChildProcess([&, memory = memory, &arguments = arguments]() -> std::string {
                      const UniqueFd nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
                      const rlim_t before = sizeOfThisProcess();
                      rlimit limit = {};
                      if (dup2(nowhere.get(), STDOUT_FILENO) < 0 || !runFilesystemWorkerIfRequested(arguments) ||
                          getrlimit(RLIMIT_AS, &limit) != 0)
                          return "not run";
                      const rlim_t more = limit.rlim_cur == RLIM_INFINITY ? 0 : limit.rlim_cur - before;
                      const bool isLimited = more >= memory && more < memory + mebibyte / 2;
                      return (unlink((folder / ".hidden").c_str()) == 0 ? "may write" : "may not write") +
                             std::string(isLimited || isSanitized ? "" : ", " + std::to_string(more) + " bytes more");
                  }),
                  "may not write")
            << arguments[0];
}

TEST_F(FilesystemWorker, WritesNothingButTheMeasuresToItsOutput) {
    const auto expected = [&](const std::string& size, const char* date, const char* complete) {
        return EndedChild{.status = 0,
                          .output = "{\"size\":" + size + ",\"newestModificationTime\":" + date +
                                    ",\"complete\":" + complete + "}"};
    };
    EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", folder, "3"}),
              expected(std::to_string(allocatedBytes(folder / "one") + allocatedBytes(folder / ".hidden")),
                       "1700000000.25", "true"));
    EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", folder / ".hidden", "3"}),
              expected(std::to_string(allocatedBytes(folder / ".hidden")), "1600000000.0", "true"));
}

TEST_F(FilesystemWorker, MeasuresNothingButFolders) {
    const EndedChild nothing{.status = 0, .output = R"({"size":0,"complete":false})"};
    fs::create_directory_symlink(folder, root / "link");
    for (const auto& item : {root / "missing", root / "link", fs::path("/dev/null"), fs::path("")})
        EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", item, "3"}), nothing) << item;
    EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", folder, "1e-9"}), nothing);
    fs::create_directory(root / "empty");
    EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", root / "empty", "3"}),
              (EndedChild{.status = 0, .output = R"({"size":0,"complete":true})"}));
}

TEST_F(FilesystemWorker, ListsIntoAFileThatOnlyItsOwnerMayRead) {
    for (const auto mask : std::initializer_list<mode_t>{0, 022, 0277}) {
        fs::remove(output);
        const mode_t before = umask(mask);
        const auto ended = list(output);
        umask(before);
        EXPECT_EQ(ended, silent);
        EXPECT_EQ(readFile(output), listing);
        EXPECT_EQ(permissionsOf(output), 0600U) << mask;
    }
}

TEST_F(FilesystemWorker, UsesAnEmptyFileForItsListAndRestrictsItToItsOwner) {
    writeFile(output, "");
    fs::permissions(output, fs::perms(0644));
    EXPECT_EQ(list(output), silent);
    EXPECT_EQ(readFile(output), listing);
    EXPECT_EQ(permissionsOf(output), 0600U);
}

TEST_F(FilesystemWorker, LeavesWhatStandsInPlaceOfItsFileAsItIs) {
    const auto picture = [&] {
        const auto facts = factsOf(output);
        return std::tuple(facts.st_mode, facts.st_uid, facts.st_size, facts.st_rdev, modificationTime(facts));
    };
    const std::pair<const char*, std::function<bool()>> cases[] = {
        {"a file that is not empty",
         [&] {
             writeFile(output, "a letter");
             fs::permissions(output, fs::perms(0644));
             return true;
         }},
        {"a link to an empty file",
         [&] {
             writeFile(root / "other", "");
             fs::create_symlink(root / "other", output);
             return true;
         }},
        {"a link to nothing",
         [&] {
             fs::create_symlink(root / "dangling", output);
             return true;
         }},
        {"a pipe that nobody reads", [&] { return mkfifo(output.c_str(), 0600) == 0; }},
        {"a folder", [&] { return fs::create_directory(output); }},
        {"a device, which only root can make",
         [&] { return mknod(output.c_str(), S_IFCHR | 0644, factsOf("/dev/null").st_rdev) == 0; }},
        {"an empty file of another user, which only root can give away",
         [&] {
             writeFile(output, "");
             fs::permissions(output, fs::perms(0666));
             return chown(output.c_str(), unknownUser(), unknownUser()) == 0;
         }},
    };
    for (const auto& [name, make] : cases) {
        fs::remove(output);
        if (!make())
            continue;
        const auto before = picture();
        EXPECT_EQ(list(output), silent) << name;
        EXPECT_EQ(picture(), before) << name;
    }
    EXPECT_EQ(readFile(root / "other"), "");
    EXPECT_FALSE(fs::exists(root / "dangling"));
}

TEST_F(FilesystemWorker, WritesIntoNoPipeThatSomebodyReads) {
    ASSERT_EQ(mkfifo(output.c_str(), 0600), 0);
    const UniqueFd reader(open(output.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(reader);
    EXPECT_EQ(list(output), silent);
    char byte = 0;
    EXPECT_EQ(read(reader.get(), &byte, 1), 0);
}

TEST_F(FilesystemWorker, LeavesAnEmptyFileWhenTheListDoesNotFit) {
    constexpr rlim_t room = 4096;
    for (int i = 0; i < 100; ++i)
        writeFile(folder / (std::to_string(i) + std::string(100, 'n')), "");
    const std::string said = inChildProcess([&] {
        constexpr unsigned patience = 60; // seconds
        alarm(patience);
        std::signal(SIGXFSZ, SIG_IGN); // so that writing fails, as on a full disk
        const rlimit limit = {room, room};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return std::string("no limit");
        const bool asked = runFilesystemWorkerIfRequested(Arguments{"--shallow-children-worker", folder, output});
        return std::string(asked ? "asked" : "not asked");
    });
    EXPECT_EQ(said, "asked");
    EXPECT_EQ(fs::file_size(output), 0U);
}

TEST_F(FilesystemWorker, ListsNothingButFolders) {
    const std::string nothing = R"({"names":[],"complete":false})";
    fs::create_directory_symlink(folder, root / "link");
    for (const auto& item : {root / "missing", root / "link", folder / "one"}) {
        EXPECT_EQ(endOf(executable, {"--shallow-children-worker", item, output}), silent);
        EXPECT_EQ(readFile(output), nothing) << item;
        fs::remove(output);
    }
}

} // namespace vantry
