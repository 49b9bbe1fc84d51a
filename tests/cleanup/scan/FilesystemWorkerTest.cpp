#include "cleanup/scan/FilesystemWorker.h"

#include "cleanup/scan/WorkerPayload.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/EndedChild.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

namespace fs = std::filesystem;

using CleanupScanner::runFilesystemWorkerIfRequested;
using Arguments = std::vector<std::string>;

const fs::path executable = OMBREL_EXECUTABLE;
const EndedChild silent{.status = 0, .output = ""};

/// A folder to look at, and one for the output.
class FilesystemWorker : public testing::Test {
protected:
    FilesystemWorker() {
        fs::create_directory(folder);
        writeFile(folder / "one", "1");
        writeFile(folder / ".hidden", "2");
        const timespec times[] = {{0, UTIME_OMIT}, {1'700'000'000, 250'000'000}};
        const timespec earlier[] = {{0, UTIME_OMIT}, {1'600'000'000, 0}};
        utimensat(AT_FDCWD, (folder / "one").c_str(), times, 0);
        utimensat(AT_FDCWD, (folder / ".hidden").c_str(), earlier, 0);
    }

    [[nodiscard]] EndedChild list(const fs::path& outputFile) const {
        return endOf(executable, {"--shallow-children-worker", folder, outputFile});
    }
    /// What is said, and written to standard output, in a process of its own, since a worker gives up rights.
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
    [[nodiscard]] std::int64_t allocated(const char* name) const {
        struct stat facts = {};
        EXPECT_EQ(stat((folder / name).c_str(), &facts), 0);
        return facts.st_blocks * 512;
    }

    const TemporaryFolder root;
    const fs::path folder = root / "folder";
    const fs::path output = root / "output.json";
    const std::string listing = R"({"names":["one"],"complete":true})";
};

unsigned permissions(const fs::path& file) {
    struct stat facts = {};
    return lstat(file.c_str(), &facts) == 0 ? facts.st_mode & 07777 : 0;
}

} // namespace

TEST_F(FilesystemWorker, IsNoneWithoutAFlagInFront) {
    for (const auto& arguments : {Arguments{}, Arguments{"--show-cleanup"}, Arguments{folder.native(), "1"},
                                  Arguments{"--show-cleanup", "--shallow-children-worker", folder, output}})
        EXPECT_FALSE(runFilesystemWorkerIfRequested(arguments)) << testing::PrintToString(arguments);
    EXPECT_FALSE(fs::exists(output));
}

TEST_F(FilesystemWorker, HasDoneItsJobWhenItSaysThatItWasAskedFor) {
    const std::string measured = answerTo({"--directory-metrics-worker", folder, "3"});
    EXPECT_EQ(measured.substr(0, 14), R"(asked {"size":)");
    EXPECT_TRUE(decodedDirectoryMetrics(measured.substr(6))) << measured;
    EXPECT_EQ(answerTo({"--shallow-children-worker", folder, output}), "asked ");
    EXPECT_EQ(readFile(output), listing);
}

TEST_F(FilesystemWorker, WasAskedForAlsoWhenItCannotDoItsJob) {
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

TEST_F(FilesystemWorker, WritesNothingButTheMeasuresToItsOutput) {
    const auto expected = [&](const std::string& size, const char* date, const char* complete) {
        return EndedChild{.status = 0,
                          .output = "{\"size\":" + size + ",\"newestModificationTime\":" + date +
                                    ",\"complete\":" + complete + "}"};
    };
    EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", folder, "3"}),
              expected(std::to_string(allocated("one") + allocated(".hidden")), "1700000000.25", "true"));
    EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", folder / ".hidden", "3"}),
              expected(std::to_string(allocated(".hidden")), "1600000000.0", "true"));
}

TEST_F(FilesystemWorker, MeasuresNothingOfWhatIsNoFolder) {
    const EndedChild nothing{.status = 0, .output = R"({"size":0,"complete":false})"};
    fs::create_directory_symlink(folder, root / "link");
    for (const auto& item : {root / "missing", root / "link", fs::path("/dev/null"), fs::path("")})
        EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", item, "3"}), nothing) << item;
    EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", folder, "1e-9"}), nothing);
    fs::create_directory(root / "empty");
    EXPECT_EQ(endOf(executable, {"--directory-metrics-worker", root / "empty", "3"}),
              (EndedChild{.status = 0, .output = R"({"size":0,"complete":true})"}));
}

TEST_F(FilesystemWorker, ListsIntoAFileOfItsOwnerOnly) {
    for (const auto mask : std::initializer_list<mode_t>{0, 022, 0277}) {
        fs::remove(output);
        const mode_t before = umask(mask);
        const auto ended = list(output);
        umask(before);
        EXPECT_EQ(ended, silent);
        EXPECT_EQ(readFile(output), listing);
        EXPECT_EQ(permissions(output), 0600U) << mask;
    }
}

TEST_F(FilesystemWorker, TakesAnEmptyFileForItsListAndMakesItItsOwners) {
    writeFile(output, "");
    fs::permissions(output, fs::perms(0644));
    EXPECT_EQ(list(output), silent);
    EXPECT_EQ(readFile(output), listing);
    EXPECT_EQ(permissions(output), 0600U);
}

TEST_F(FilesystemWorker, NeverWritesOverAFile) {
    writeFile(output, "a letter");
    fs::permissions(output, fs::perms(0644));
    EXPECT_EQ(list(output), silent);
    EXPECT_EQ(readFile(output), "a letter");
    EXPECT_EQ(permissions(output), 0644U);
}

TEST_F(FilesystemWorker, WritesThroughNoLink) {
    const fs::path other = root / "other";
    writeFile(other, "");
    fs::create_symlink(other, output);
    EXPECT_EQ(list(output), silent);
    EXPECT_EQ(readFile(other), "");
    EXPECT_TRUE(fs::is_symlink(output));

    fs::remove(output);
    fs::create_symlink(root / "dangling", output);
    EXPECT_EQ(list(output), silent);
    EXPECT_FALSE(fs::exists(root / "dangling"));
}

TEST_F(FilesystemWorker, WaitsForNobodyAtAFifo) {
    ASSERT_EQ(mkfifo(output.c_str(), 0600), 0);
    EXPECT_EQ(list(output), silent); // nobody reads
    const int reader = open(output.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(list(output), silent);
    char byte = 0;
    EXPECT_EQ(read(reader, &byte, 1), 0);
    close(reader);
}

TEST_F(FilesystemWorker, WritesIntoNoFolderAndNoDevice) {
    fs::create_directory(output);
    EXPECT_EQ(list(output), silent);
    EXPECT_TRUE(fs::is_empty(output));
    const fs::path device = root / "null";
    struct stat null = {};
    ASSERT_EQ(stat("/dev/null", &null), 0);
    if (mknod(device.c_str(), S_IFCHR | 0644, null.st_rdev) != 0)
        GTEST_SKIP() << "no right to make a device";
    const auto before = permissions(device);
    EXPECT_EQ(list(device), silent);
    EXPECT_EQ(permissions(device), before);
}

TEST_F(FilesystemWorker, WritesIntoNoFileOfAnotherUser) {
    writeFile(output, "");
    fs::permissions(output, fs::perms(0666));
    if (chown(output.c_str(), unknownUser(), unknownUser()) != 0)
        GTEST_SKIP() << "no right to give a file away";
    EXPECT_EQ(list(output), silent);
    EXPECT_EQ(readFile(output), "");
    EXPECT_EQ(permissions(output), 0666U);
}

TEST_F(FilesystemWorker, GivesUpAListThatDoesNotFit) {
    constexpr rlim_t room = 4096;
    for (int i = 0; i < 100; ++i)
        writeFile(folder / (std::to_string(i) + std::string(100, 'n')), "");
    const std::string said = inChildProcess([&] {
        constexpr unsigned patience = 60; // seconds
        alarm(patience);
        std::signal(SIGXFSZ, SIG_IGN); // as with a full disk, writing fails then
        const rlimit limit = {room, room};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return std::string("no limit");
        const bool asked = runFilesystemWorkerIfRequested(Arguments{"--shallow-children-worker", folder, output});
        return std::string(asked ? "asked" : "not asked");
    });
    EXPECT_EQ(said, "asked");
    EXPECT_EQ(fs::file_size(output), 0U);
}

TEST_F(FilesystemWorker, ListsNothingOfWhatIsNoFolder) {
    const std::string nothing = R"({"names":[],"complete":false})";
    fs::create_directory_symlink(folder, root / "link");
    for (const auto& item : {root / "missing", root / "link", folder / "one"}) {
        EXPECT_EQ(endOf(executable, {"--shallow-children-worker", item, output}), silent);
        EXPECT_EQ(readFile(output), nothing) << item;
        fs::remove(output);
    }
}

TEST_F(FilesystemWorker, ListsNamesOfEveryKind) {
    std::vector<std::string> names = {"Größe", "caf\xe9", "\xff", "a\"b", "a\nb", "a\\b", "...x", " ", "-", "*"};
    names.emplace_back(255, 'n');
    names.emplace_back(255, '\xe4');
    names.emplace_back(255, '"');
    const fs::path odd = root / "odd";
    fs::create_directory(odd);
    for (const auto& name : names)
        writeFile(odd / name, "");
    names.erase(std::ranges::find(names, "...x")); // hidden
    EXPECT_EQ(endOf(executable, {"--shallow-children-worker", odd, output}), silent);
    auto payload = decodedShallowChildren(readFile(output));
    ASSERT_TRUE(payload) << readFile(output);
    EXPECT_TRUE(payload->complete);
    std::ranges::sort(payload->names);
    std::ranges::sort(names);
    EXPECT_EQ(payload->names, names);
}

} // namespace vantry
