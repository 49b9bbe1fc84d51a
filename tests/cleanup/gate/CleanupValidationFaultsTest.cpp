// Validation on Linux when system calls fail or something is mounted over the item.

#include "tests/cleanup/gate/CleanupValidationFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/InterceptedCall.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TestSystem.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <functional>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <set>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vantry {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// The calls that read anything about a file, by path or by descriptor.
const std::vector<long> readingCalls{
#ifdef SYS_open
    SYS_open,       SYS_stat,      SYS_lstat,      SYS_access,     SYS_readlink,
#endif
    SYS_openat,     SYS_openat2,   SYS_statx,      SYS_newfstatat, SYS_fstat,    SYS_name_to_handle_at,
    SYS_readlinkat, SYS_faccessat, SYS_faccessat2, SYS_getdents64, SYS_statfs,   SYS_getcwd,
};

/// From here on this process dies of any of `calls`. For a child process.
bool dieOf(const std::vector<long>& calls) {
    std::vector<sock_filter> program{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const long call : calls) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

bool mountOnItself(const fs::path& path) { return mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) == 0; }

} // namespace

class CleanupValidationFaults : public CleanupValidationFixture {
protected:
    CleanupCandidate log() { return scanned(makeOld(logs / "old.log"), CleanupCategory::log); }

    [[nodiscard]] std::string answer(const CleanupCandidate& candidate) const {
        return failure(candidate).value_or("safe");
    }
    /// The answer of a process that dies of `calls`.
    [[nodiscard]] std::string answerWithout(const std::vector<long>& calls, const CleanupCandidate& candidate) const {
        return inChildProcess([&] { return dieOf(calls) ? answer(candidate) : "not forbidden"; });
    }
};

TEST_F(CleanupValidationFaults, AProtectedStaleOrUnapprovedItemIsRefusedWithoutADiskAccess) {
    const CleanupCandidate candidate = log();
    const std::string died = answerWithout(readingCalls, candidate);
    if (died == "not forbidden")
        GTEST_SKIP() << "may not filter system calls";
    EXPECT_EQ(died, "ended by signal " + std::to_string(SIGSYS)) << "no call was made that should have been seen";
    for (const auto& row : allCleanupCategories) {
        if (row.removalDisposition == CleanupRemovalDisposition::directTrash)
            continue;
        CleanupCandidate refused = candidate;
        refused.category = row.value;
        EXPECT_EQ(answerWithout(readingCalls, refused), "this type of item is protected from direct cleanup");
    }
    CleanupCandidate refused = candidate;
    refused.scannedAt = now - 301s;
    EXPECT_EQ(answerWithout(readingCalls, refused), "the scan is more than five minutes old");
    refused = candidate;
    refused.category = static_cast<CleanupCategory>(99);
    EXPECT_EQ(answerWithout(readingCalls, refused), "this type of item is not approved for direct cleanup");
}

TEST_F(CleanupValidationFaults, AMissingOrMisplacedItemIsNotRead) {
    const CleanupCandidate candidate = log();
    const std::vector<long> identity{SYS_name_to_handle_at};
    const std::string died = answerWithout(identity, candidate);
    if (died == "not forbidden")
        GTEST_SKIP() << "may not filter system calls";
    EXPECT_EQ(died, "ended by signal " + std::to_string(SIGSYS));
    EXPECT_EQ(answerWithout(identity, scanned(makeOld(crashReports / "old.log"), CleanupCategory::log)),
              "it is not a direct file inside an approved cleanup folder");
    fs::remove(candidate.url);
    const std::vector<long> facts{SYS_name_to_handle_at, SYS_statx, SYS_newfstatat, SYS_fstat};
    EXPECT_EQ(answerWithout(facts, candidate), "it no longer exists");
}

// Each case makes one change at one exact moment, as a race could.
TEST_F(CleanupValidationFaults, AChangeBetweenTwoReadingsIsRefused) {
    const auto linkFolder = [this] {
        fs::rename(logs, root / "moved");
        fs::create_directory_symlink(root / "moved", logs);
    };
    const auto moveFolder = [this] { fs::rename(logs, root / "moved"); };
    const auto replaceFolder = [this] {
        fs::rename(logs, root / "moved");
        fs::create_directory(logs);
        fs::create_hard_link(root / "moved/old.log", logs / "old.log");
    };
    const auto removeFile = [this] { fs::remove(logs / "old.log"); };
    const auto replaceFile = [this] { fs::rename(logs / "copy.log", logs / "old.log"); };
    const auto linkFile = [this] {
        fs::rename(logs / "old.log", logs / "moved.log");
        fs::create_symlink("moved.log", logs / "old.log");
    };
    const auto moveFileThereAndBack = [this] {
        fs::rename(logs / "old.log", logs / "moved.log");
        fs::rename(logs / "moved.log", logs / "old.log");
    };
    const auto nothing = [] {};
    constexpr const char* relocated = "the approved cleanup folder is missing or relocated";
    constexpr const char* missing = "it no longer exists";
    constexpr const char* linked = "its path now contains a symbolic link";
    constexpr const char* otherItem = "a different item now occupies this path";
    struct Case {
        const char* name;
        long call;
        int turn;
        std::function<void()> change;
        const char* expected;
        bool isModified = false; ///< since the scan
    };
    for (const Case& each : {
             Case{"nothing", SYS_openat2, 1, nothing, "safe"},
             Case{"folder linked before it is opened", SYS_openat2, 1, linkFolder, linked},
             Case{"folder moved before it is opened", SYS_openat2, 1, moveFolder, missing},
             Case{"file removed before it is opened", SYS_openat, 1, removeFile, missing},
             Case{"file linked before it is opened", SYS_openat, 1, linkFile, linked},
             Case{"file replaced before it is opened", SYS_openat, 1, replaceFile, otherItem},
             // After the folder was opened, its path is checked again.
             Case{"folder linked before the file is opened", SYS_openat, 1, linkFolder, relocated},
             Case{"folder linked", SYS_openat2, 2, linkFolder, relocated},
             Case{"folder moved", SYS_openat2, 2, moveFolder, relocated},
             Case{"folder replaced", SYS_openat2, 2, replaceFolder, relocated},
             Case{"nothing, of a modified file", SYS_openat2, 2, nothing, "it was modified after the scan", true},
             Case{"folder linked, of a modified file", SYS_openat2, 2, linkFolder, relocated, true},
             Case{"folder replaced, of a modified file", SYS_openat2, 2, replaceFolder, relocated, true},
             // The facts come from the opened file. At the end its name must still lead to it.
             Case{"file removed in the end", SYS_name_to_handle_at, 1, removeFile, missing},
             Case{"file linked in the end", SYS_name_to_handle_at, 1, linkFile, linked},
             Case{"file replaced in the end", SYS_name_to_handle_at, 1, replaceFile, otherItem},
             Case{"folder linked in the end", SYS_name_to_handle_at, 2, linkFolder, relocated},
             Case{"folder moved in the end", SYS_name_to_handle_at, 2, moveFolder, relocated},
             Case{"folder replaced in the end", SYS_name_to_handle_at, 2, replaceFolder, relocated},
             Case{"file moved there and back", SYS_name_to_handle_at, 1, moveFileThereAndBack, "safe"},
         }) {
        fs::remove_all(logs);
        fs::remove_all(root / "moved");
        fs::create_directory(logs);
        makeOld(logs / "copy.log");
        const CleanupCandidate candidate = log();
        if (each.isModified)
            setModified(candidate.url, now - 100 * 24h);
        const std::string answers = inChildProcess([&]() -> std::string {
            bool isChanged = false;
            const bool isIntercepted = interceptCall(each.call, [&](int turn) {
                if (turn == each.turn) {
                    each.change();
                    isChanged = true;
                }
            });
            if (!isIntercepted)
                return "not intercepted";
            const std::string text = answer(candidate);
            return isChanged ? text : "nothing was changed";
        });
        if (answers == "not intercepted")
            GTEST_SKIP() << "may not see system calls, or not under this tool";
        EXPECT_EQ(answers, each.expected) << each.name;
    }
}

// The call fails because its descriptor is closed just before.
TEST_F(CleanupValidationFaults, AnItemWhoseFactsCannotBeReadIsRefused) {
    const CleanupCandidate candidate = log();
    std::set<std::string> answers;
    for (int turn = 1; !answers.contains("nothing failed"); ++turn) {
        answers.insert(inChildProcess([&]() -> std::string {
            bool failed = false;
            const bool isIntercepted = interceptCall(SYS_statx, [&](int current) {
                if (current == turn)
                    failed = close(static_cast<int>(InterceptedCall::firstArgument)) == 0;
            });
            const std::string text = answer(candidate);
            return !isIntercepted ? "not intercepted" : failed ? text : "nothing failed";
        }));
        if (answers.contains("not intercepted"))
            GTEST_SKIP() << "may not see system calls, or not under this tool";
    }
    EXPECT_FALSE(answers.contains("safe"));
    EXPECT_TRUE(answers.contains("its current file details could not be verified"));
    EXPECT_TRUE(answers.contains("the approved cleanup folder could not be verified"));
}

TEST_F(CleanupValidationFaults, ASystemWithoutOpenat2IsEquallySafe) {
    const CleanupCandidate candidate = log();
    const CleanupCandidate behindLink = scanned(makeOld(home / "Downloads/old.dmg"), CleanupCategory::installer);
    fs::rename(downloads, root / "elsewhere");
    fs::create_directory_symlink(root / "elsewhere", downloads);
    const CleanupCandidate gone = scanned(makeOld(crashReports / "gone.ips"), CleanupCategory::crashReport);
    fs::remove(gone.url);
    for (const int errorNumber : {ENOSYS, EPERM, EAGAIN}) {
        const std::string answers = inChildProcess([&]() -> std::string {
            if (!refuseCall(SYS_openat2, errorNumber))
                return "not refused";
            return answer(candidate) + ", " + answer(behindLink) + ", " + answer(gone);
        });
        if (answers == "not refused")
            GTEST_SKIP() << "may not filter system calls";
        EXPECT_EQ(answers, "safe, its path now contains a symbolic link, it no longer exists")
            << std::strerror(errorNumber);
    }
}

TEST_F(CleanupValidationFaults, WithoutFileHandlesIdentitiesDifferFromThoseWithThem) {
    const CleanupCandidate candidate = log();
    if (!candidate.scannedResourceIdentifier->starts_with("handle "))
        GTEST_SKIP() << "a file system without file handles";
    const std::string answers = inChildProcess([&]() -> std::string {
        if (!refuseCall(SYS_name_to_handle_at, EPERM))
            return "not refused";
        return answer(candidate) + ", " + answer(scanned(candidate.url, CleanupCategory::log));
    });
    if (answers == "not refused")
        GTEST_SKIP() << "may not filter system calls";
    EXPECT_EQ(answers, "a different item now occupies this path, safe");
}

TEST_F(CleanupValidationFaults, WithoutAFreeDescriptorNothingIsSafe) {
    const CleanupCandidate there = log();
    const CleanupCandidate gone = scanned(makeOld(logs / "gone.log"), CleanupCategory::log);
    fs::remove(gone.url);
    const CleanupCandidate link = scanned(makeOld(logs / "link.log"), CleanupCategory::log);
    fs::remove(link.url);
    fs::create_symlink("old.log", link.url);
    const CleanupCandidate elsewhere = scanned(makeOld(crashReports / "old.log"), CleanupCategory::log);
    // openat2 opens the folder, openat the file.
    for (const long call : {SYS_openat2, SYS_openat}) {
        const auto answered = [&](const CleanupCandidate& candidate) {
            return inChildProcess([&] { return refuseCall(call, EMFILE) ? answer(candidate) : "not refused"; });
        };
        if (answered(there) == "not refused")
            GTEST_SKIP() << "may not filter system calls";
        EXPECT_EQ(answered(there), "its current file details could not be verified");
        EXPECT_EQ(answered(gone), "it no longer exists");
        EXPECT_EQ(answered(link), "its path now contains a symbolic link");
        EXPECT_EQ(answered(elsewhere), "it is not a direct file inside an approved cleanup folder");
    }
}

TEST_F(CleanupValidationFaults, AnOrdinaryUserNeedsAccessToTheFolderButNotToTheFile) {
    const CleanupCandidate candidate = log();
    const bool isRoot = geteuid() == 0; // root may do everything, so the test becomes another user
    const uid_t user = isRoot ? unknownUser() : geteuid();
    ASSERT_EQ(chown(candidate.url.c_str(), user, static_cast<gid_t>(-1)), 0);
    fs::permissions(candidate.url, fs::perms::none);
    fs::permissions(root, fs::perms(0711));
    const auto asUser = [&] {
        return inChildProcess([&] { return !isRoot || becomeUser(user) ? answer(candidate) : "still the same user"; });
    };
    EXPECT_EQ(asUser(), "safe");
    if (isRoot) {
        EXPECT_EQ(answer(candidate), "it is not owned by the current user");
    }
    fs::permissions(logs, isRoot ? fs::perms(0700) : fs::perms::none);
    EXPECT_EQ(asUser(), "it no longer exists") << "nobody can tell";
    fs::permissions(logs, fs::perms(0700));
}

TEST_F(CleanupValidationFaults, AnotherVolumeOverTheFolderOrTheFileIsRefused) {
    const CleanupCandidate candidate = log();
    const std::string answers = inChildProcess([&]() -> std::string {
        if (!keepMountsPrivate() || !mountOnItself(logs))
            return "not mounted";
        std::string text = answer(candidate) + ", ";
        const CleanupCandidate scannedThere = scanned(candidate.url, CleanupCategory::log);
        text += answer(scannedThere) + ", ";
        if (!mountOnItself(candidate.url))
            return "not mounted";
        text += answer(scannedThere) + ", ";
        return text + answer(scanned(candidate.url, CleanupCategory::log));
    });
    if (answers == "not mounted")
        GTEST_SKIP() << "may not mount";
    EXPECT_EQ(answers, "it is no longer on the approved folder’s volume, safe, "
                       "it is no longer on the approved folder’s volume, "
                       "it is no longer on the approved folder’s volume");
}

TEST_F(CleanupValidationFaults, NamesThatAreNotValidUtf8AreAccepted) {
    for (const char* name : {"\xff\xfe.log", "\xc3.LOG", "a\x80/b.log"}) {
        const fs::path file = logs / name;
        fs::create_directories(file.parent_path());
        EXPECT_EQ(answer(scanned(makeOld(file), CleanupCategory::log)),
                  file.parent_path() == logs ? "safe" : "it is not a direct file inside an approved cleanup folder");
    }
    const fs::path strange = root / "h\xf6me";
    fs::rename(home, strange);
    places.home = strange;
    EXPECT_EQ(answer(scanned(makeOld(strange / "Library/Logs/\xff.log"), CleanupCategory::log)), "safe");
}

TEST_F(CleanupValidationFaults, LeavesNoDescriptorOpen) {
    const CleanupCandidate candidate = log();
    CleanupCandidate other = candidate;
    other.url = crashReports;
    const auto before = openDescriptorCount();
    EXPECT_EQ(answer(candidate), "safe");
    EXPECT_NE(answer(other), "safe");
    EXPECT_EQ(openDescriptorCount(), before);
}

/// In memory, where a file may have any date.
class CleanupValidationOfFarDates : public CleanupValidationFixture {
protected:
    CleanupValidationOfFarDates() : CleanupValidationFixture(folderForManyFiles()) {}

    /// The answer for a file dated `seconds` after 1970; "not held" when the file system cannot store that date.
    [[nodiscard]] std::string answerFor(time_t seconds) const {
        const fs::path file = makeOld(downloads / "far.dmg");
        const timespec times[2] = {{0, UTIME_OMIT}, {seconds, 0}};
        struct stat facts = {};
        if (utimensat(AT_FDCWD, file.c_str(), times, 0) != 0 || stat(file.c_str(), &facts) != 0 ||
            facts.st_mtim.tv_sec != seconds)
            return "not held";
        return failure(scanned(file, CleanupCategory::installer)).value_or("safe");
    }
};

TEST_F(CleanupValidationOfFarDates, DatesBeyondTheRangeOfTheClockAreOldOrYoung) {
    if (answerFor(20'000'000'000) == "not held")
        GTEST_SKIP() << "no file system for far dates to write to";
    EXPECT_EQ(answerFor(-20'000'000'000), "safe");
    EXPECT_EQ(answerFor(-9'223'372'037), "safe");
    EXPECT_EQ(answerFor(-1), "safe");
    EXPECT_EQ(answerFor(0), "safe");
    EXPECT_EQ(answerFor(4'294'967'296), "it is no longer old enough for low-risk cleanup");
    EXPECT_EQ(answerFor(9'223'372'037), "it is no longer old enough for low-risk cleanup");
    EXPECT_EQ(answerFor(20'000'000'000), "it is no longer old enough for low-risk cleanup");
}

} // namespace vantry
