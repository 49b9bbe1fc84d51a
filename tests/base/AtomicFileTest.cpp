#include "base/AtomicFile.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>

#ifdef __linux__
#include <sys/ptrace.h>
#include <sys/wait.h>
#endif

namespace vantry {
namespace {

std::set<std::string> namesIn(const std::filesystem::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename().native());
    return names;
}

mode_t modeOf(const std::filesystem::path& file) {
    struct stat facts = {};
    return stat(file.c_str(), &facts) == 0 ? facts.st_mode & 07777 : 0;
}

TEST(AtomicFile, ANewFileHasItsContentsAndItsPermissionsWhateverTheUmask) {
    const TemporaryFolder folder;
    const mode_t before = umask(0077);
    const auto written = writeFileAtomically(folder / "file", "contents", 0644);
    umask(before);
    ASSERT_TRUE(written) << written.error().message;
    EXPECT_EQ(readFile(folder / "file"), "contents");
    EXPECT_EQ(modeOf(folder / "file"), 0644);
    EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"file"});
}

TEST(AtomicFile, AnOldFileIsReplacedAsAWhole) {
    const TemporaryFolder folder;
    writeFile(folder / "file", std::string(5000, 'o'));
    ASSERT_TRUE(writeFileAtomically(folder / "file", "new", 0600));
    EXPECT_EQ(readFile(folder / "file"), "new");
    EXPECT_EQ(modeOf(folder / "file"), 0600);
}

TEST(AtomicFile, AMissingFolderIsAnError) {
    const TemporaryFolder folder;
    const auto written = writeFileAtomically(folder / "missing/file", "contents", 0644);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().kind, ErrorKind::notFound);
}

TEST(AtomicFile, AFolderInPlaceOfTheFileStaysWithItsContents) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "file");
    writeFile(folder / "file/inside", "kept");
    ASSERT_FALSE(writeFileAtomically(folder / "file", "contents", 0644));
    EXPECT_EQ(readFile(folder / "file/inside"), "kept");
    EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"file"});
}

TEST(AtomicFile, ALinkIsReplacedAndWhatItLeadsToStays) {
    const TemporaryFolder folder;
    writeFile(folder / "target", "kept");
    std::filesystem::create_symlink("target", folder / "file");
    ASSERT_TRUE(writeFileAtomically(folder / "file", "contents", 0644));
    EXPECT_EQ(readFile(folder / "target"), "kept");
    EXPECT_EQ(readFile(folder / "file"), "contents");
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "file"));
}

TEST(AtomicFile, ADraftLeftByACrashIsReplacedByTheNextWriteEvenIfItIsALink) {
    for (const bool link : {false, true}) {
        const TemporaryFolder folder;
        writeFile(folder / "victim", "kept");
        if (link)
            std::filesystem::create_symlink("victim", folder / ".file.new");
        else
            writeFile(folder / ".file.new", "half of");
        ASSERT_TRUE(writeFileAtomically(folder / "file", "contents", 0644));
        EXPECT_EQ(readFile(folder / "victim"), "kept");
        EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"file", "victim"}));
    }
}

TEST(AtomicFile, AFailedWriteLeavesOnlyTheOldFile) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "old");
    const auto answer = inChildProcess([&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        return std::string(writeFileAtomically(folder / "file", std::string(5000, 'n'), 0644) ? "written" : "failed");
    });
    EXPECT_EQ(answer, "failed");
    EXPECT_EQ(readFile(folder / "file"), "old");
    EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"file"});
}

#ifdef __linux__

// Starts `block` in a copy of this process and kills it when it is about to make its system call number `fatal`.
// True when it was killed, false when it ended by itself before.
bool killedAtSystemCall(int fatal, const std::function<void()>& block) {
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        block();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    for (int stops = 0; WIFSTOPPED(status); ++stops) {
        // A call stops twice: before it is made and after.
        if (stops == 2 * fatal - 1) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return true;
        }
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
    }
    return false;
}

TEST(AtomicFile, KilledAtAnySystemCallItLeavesTheOldFileOrTheNewOne) {
    const std::string oldText(3000, 'o');
    const std::string newText(7000, 'n');
    int kills = 0;
    bool sawOld = false;
    bool sawNew = false;
    for (bool killed = true; killed;) {
        const TemporaryFolder folder;
        const auto file = folder / "file";
        writeFile(file, oldText);
        killed = killedAtSystemCall(kills + 1, [&] { std::ignore = writeFileAtomically(file, newText, 0644); });
        const std::string found = readFile(file);
        EXPECT_TRUE(found == oldText || found == newText) << "torn at call " << kills + 1;
        sawOld = sawOld || found == oldText;
        sawNew = sawNew || found == newText;
        ASSERT_TRUE(writeFileAtomically(file, "last", 0644));
        EXPECT_EQ(readFile(file), "last");
        EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"file"});
        kills += killed ? 1 : 0;
        ASSERT_LT(kills, 200);
    }
    EXPECT_GE(kills, 5); // at least: open, write, fchmod, fsync, rename
    EXPECT_TRUE(sawOld);
    EXPECT_TRUE(sawNew);
}

#endif

TEST(ReadSmallFile, ReadsAFileUpToTheLimit) {
    const TemporaryFolder folder;
    const std::string text(100000, 'x');
    writeFile(folder / "file", text);
    EXPECT_EQ(readSmallFile(folder / "file", 100000), text);
    const auto tooLarge = readSmallFile(folder / "file", 99999);
    ASSERT_FALSE(tooLarge);
    EXPECT_EQ(tooLarge.error().kind, ErrorKind::invalid);
}

TEST(ReadSmallFile, AnythingButAFileIsAnErrorAndNeverBlocks) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_FALSE(readSmallFile(folder / "fifo", 10));
    EXPECT_FALSE(readSmallFile(folder.path(), 10));
    const auto missing = readSmallFile(folder / "missing", 10);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().kind, ErrorKind::notFound);
}

} // namespace
} // namespace vantry
