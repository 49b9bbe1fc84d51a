#include "platform/Sandbox.h"

#include "base/UniqueFd.h"
#include "platform/DirectoryWalk.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <linux/landlock.h>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

long landlockVersion() { return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION); }

/// A folder with some things in it, and what a process may try to do to them. Each gives 0 or an errno.
class WriteProtection : public testing::Test {
protected:
    WriteProtection() {
        for (const char* name : {"file", "renamed", "moved", "replaced", "replacement", "removed"})
            writeFile(root / name, "content");
        for (const char* name : {"folder/removed", "renamed folder"})
            fs::create_directories(root / name);
        for (const char* name : {"link", "removed link"})
            fs::create_symlink("file", root / name);
    }

    struct Attempt {
        const char* name;
        std::function<int()> make;
    };
    [[nodiscard]] std::vector<Attempt> changes() const {
        const auto call = [](int result) { return result >= 0 ? 0 : errno; };
        const auto opened = [this](const char* name, int flags) {
            const UniqueFd fd(open(path(name).c_str(), flags | O_CLOEXEC, 0600));
            return fd ? 0 : errno;
        };
        return {
            {"open for writing", [=] { return opened("file", O_WRONLY); }},
            {"open for both", [=] { return opened("file", O_RDWR); }},
            {"open for appending", [=] { return opened("file", O_WRONLY | O_APPEND); }},
            {"write through a link", [=] { return opened("link", O_WRONLY); }},
            {"make a file", [=] { return opened("new", O_WRONLY | O_CREAT); }},
            {"make a file for reading", [=] { return opened("new to read", O_RDONLY | O_CREAT); }},
            {"make a folder", [=, this] { return call(mkdir(path("new folder").c_str(), 0700)); }},
            {"make a link", [=, this] { return call(symlink("file", path("new link").c_str())); }},
            {"make a pipe", [=, this] { return call(mkfifo(path("new pipe").c_str(), 0600)); }},
            {"make a name", [=, this] { return call(link(path("file").c_str(), path("new name").c_str())); }},
            {"make a socket", [=, this] { return call(makeSocket(path("new socket"))); }},
            {"rename a file", [=, this] { return call(rename(path("renamed").c_str(), path("new").c_str())); }},
            {"move a file", [=, this] { return call(rename(path("moved").c_str(), path("folder/new").c_str())); }},
            {"replace a file",
             [=, this] { return call(rename(path("replacement").c_str(), path("replaced").c_str())); }},
            {"rename a folder",
             [=, this] { return call(rename(path("renamed folder").c_str(), path("other").c_str())); }},
            {"remove a folder", [=, this] { return call(rmdir(path("folder/removed").c_str())); }},
            {"remove a link", [=, this] { return call(unlink(path("removed link").c_str())); }},
            {"remove a file", [=, this] { return call(unlink(path("removed").c_str())); }},
        };
    }

    [[nodiscard]] fs::path path(const char* name) const { return root / name; }
    /// A line for each attempt that has not failed for want of a right.
    [[nodiscard]] std::string succeeded() const {
        std::string text;
        for (const auto& [name, make] : changes())
            if (const int error = make(); error != EACCES)
                text += std::string(name) + ": " + std::strerror(error) + '\n';
        return text;
    }
    [[nodiscard]] std::string content() const {
        std::string text;
        for (const auto& entry : fs::recursive_directory_iterator(root.path()))
            text += entry.path().lexically_relative(root.path()).native() + '\n';
        return text + readFile(root / "file");
    }

    static int makeSocket(const fs::path& path) {
        const UniqueFd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.native().copy(address.sun_path, sizeof address.sun_path - 1);
        return bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }

    const TemporaryFolder root;
};

} // namespace

#define SKIP_WITHOUT_LANDLOCK()                                                                                        \
    if (landlockVersion() < 1)                                                                                         \
    GTEST_SKIP() << "this kernel has no Landlock"

// What the tests below rely on: that each attempt is one that succeeds with the right to it.
TEST_F(WriteProtection, AllTheseAttemptsSucceedWithoutIt) {
    for (const auto& [name, make] : changes())
        EXPECT_EQ(make(), 0) << name;
}

TEST_F(WriteProtection, PreventsEveryChange) {
    SKIP_WITHOUT_LANDLOCK();
    const std::string before = content();
    EXPECT_EQ(inChildProcess([&] { return giveUpChangingFiles() ? "gave up\n" + succeeded() : "did not"; }),
              "gave up\n");
    EXPECT_EQ(content(), before);
}

TEST_F(WriteProtection, PreventsTruncation) {
    if (landlockVersion() < 3)
        GTEST_SKIP() << "this kernel's Landlock knows no truncation";
    EXPECT_EQ(inChildProcess([&]() -> std::string {
                  if (!giveUpChangingFiles())
                      return "did not";
                  return truncate(path("file").c_str(), 0) == 0 ? "truncated" : std::strerror(errno);
              }),
              std::strerror(EACCES));
    EXPECT_EQ(readFile(path("file")), "content");
}

TEST_F(WriteProtection, AllowsReading) {
    SKIP_WITHOUT_LANDLOCK();
    EXPECT_EQ(inChildProcess([&]() -> std::string {
                  if (!giveUpChangingFiles())
                      return "did not";
                  const auto names = visibleNames(root.path());
                  const auto totals =
                      walkTree(root.path(), deadlineIn(std::chrono::minutes(1)), std::make_shared<SpareThreads>(3));
                  return readFile(path("link")) + " " + std::to_string(names ? names->size() : 0) + " " +
                         std::to_string(totals.regularFiles) + (totals.complete ? " complete" : "");
              }),
              "content 10 6 complete");
}

TEST_F(WriteProtection, KeepsOpenDescriptorsWritable) {
    SKIP_WITHOUT_LANDLOCK();
    EXPECT_EQ(inChildProcess([&]() -> std::string {
                  const UniqueFd file(open(path("file").c_str(), O_WRONLY | O_CLOEXEC));
                  if (!giveUpChangingFiles())
                      return "did not";
                  const bool changed =
                      write(file.get(), "C", 1) == 1 && ftruncate(file.get(), 4) == 0 && fchmod(file.get(), 0640) == 0;
                  return changed ? readFile(path("file")) : std::strerror(errno);
              }),
              "Cont");
}

TEST_F(WriteProtection, AppliesToLaterThreadsAndProcesses) {
    SKIP_WITHOUT_LANDLOCK();
    EXPECT_EQ(inChildProcess([&] {
                  if (!giveUpChangingFiles())
                      return std::string("did not");
                  std::string inThread;
                  std::thread([&] { inThread = succeeded(); }).join();
                  const std::string touch = "touch '" + path("new").native() + "' 2>&-";
                  return inThread + inChildProcess([&] { return succeeded(); }) +
                         (std::system(touch.c_str()) != 0 ? "none" : "touched");
              }),
              "none");
}

TEST_F(WriteProtection, MayBeRequestedTwice) {
    SKIP_WITHOUT_LANDLOCK();
    EXPECT_EQ(inChildProcess([&] {
                  return giveUpChangingFiles() && giveUpChangingFiles() ? "gave up\n" + succeeded() : "did not";
              }),
              "gave up\n");
}

TEST_F(WriteProtection, OpensNoDescriptor) {
    SKIP_WITHOUT_LANDLOCK();
    EXPECT_EQ(inChildProcess([&] {
                  const auto before = openDescriptorCount();
                  return giveUpChangingFiles() && openDescriptorCount() == before ? "as many" : "more";
              }),
              "as many");
}

TEST_F(WriteProtection, IsUnsupportedByAKernelWithoutIt) {
    for (const int error : {ENOSYS, EOPNOTSUPP})
        EXPECT_EQ(inChildProcess([&]() -> std::string {
                      if (!refuseCall(SYS_landlock_create_ruleset, error))
                          return "unsupported"; // nor are filters of system calls
                      const auto gaveUp = giveUpChangingFiles();
                      if (gaveUp)
                          return "gave up";
                      return gaveUp.error().kind == ErrorKind::unsupported ? "unsupported" : gaveUp.error().message;
                  }),
                  "unsupported");
}

TEST_F(WriteProtection, ReportsARefusal) {
    SKIP_WITHOUT_LANDLOCK();
    const auto errorAfter = [](const std::function<bool()>& prepare) {
        return inChildProcess([&]() -> std::string {
            if (!prepare())
                return "not prepared";
            const auto gaveUp = giveUpChangingFiles();
            return gaveUp ? "gave up" : gaveUp.error().message;
        });
    };
    EXPECT_EQ(errorAfter([] { return refuseCall(SYS_landlock_restrict_self, EPERM); }),
              errorFromErrno(EPERM, "Landlock").message);
    EXPECT_EQ(errorAfter([] { return refuseCall(SYS_landlock_restrict_self, E2BIG); }),
              errorFromErrno(E2BIG, "Landlock").message);
    EXPECT_EQ(errorAfter([] {
                  const rlimit none = {0, 0};
                  return setrlimit(RLIMIT_NOFILE, &none) == 0;
              }),
              errorFromErrno(EMFILE, "Landlock").message);
}

} // namespace vantry
