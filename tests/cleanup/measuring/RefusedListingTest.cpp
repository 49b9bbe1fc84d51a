// Folders that can be opened, and not be listed, or whose entries cannot be looked at.

#include "cleanup/measuring/BundleSearch.h"
#include "cleanup/measuring/DiskUsage.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/syscall.h>

namespace vantry::CleanupScanner {

namespace {

/// What `answer` tells of `root` while it cannot be listed: the kernel refuses one or the other of what listing asks.
template <class Answer>
void expectIncomplete(const TemporaryFolder& root, Answer answer) {
    std::filesystem::create_directories(root / "a");
    for (const long call : {SYS_getdents64, SYS_fcntl})
        EXPECT_EQ(inChildProcess([&]() -> std::string {
                      if (!refuseCall(call, EIO))
                          return "no refusal";
                      return answer() ? "complete" : "not complete";
                  }),
                  "not complete")
            << call;
}

} // namespace

TEST(DiskUsageOfARefusedListing, IsALowerBound) {
    const TemporaryFolder root;
    expectIncomplete(root,
                     [&] { return diskUsageInProcess(root.path(), {}, deadlineIn(std::chrono::minutes(1))).complete; });
}

TEST(BundlesInARefusedListing, MakeTheSearchIncomplete) {
    const TemporaryFolder root;
    expectIncomplete(root, [&] {
        return searchBundles({.folders = {root.path()}, .system = "/System"}, [](const auto&) { return true; });
    });
}

// As some file systems do, this one tells no kinds of entries: each has to be looked at.
TEST(BundlesOfUnknownKind, MakeTheSearchIncompleteIfTheyCannotBeLookedAt) {
    namespace fs = std::filesystem;
    const TemporaryFolder root;
    const auto searched = [&](fs::perms ofSuite) {
        return inChildProcess([&]() -> std::string {
            const fs::path point = root / "point";
            fs::create_directories(point);
            const std::string image = root / "image";
            const std::string commands = "PATH=$PATH:/usr/sbin:/sbin; exec >/dev/null 2>&1; truncate -s 4M " + image +
                                         " && mkfs.ext4 -q -F -O ^filetype " + image + " && mount -o loop " + image +
                                         " " + point.native();
            if (!keepMountsPrivate() || std::system(commands.c_str()) != 0)
                return "no file system";
            fs::create_directories(point / "Suite/One.app");
            fs::permissions(point / "Suite", ofSuite);
            for (const auto& open : {point, root.path()})
                fs::permissions(open, fs::perms::all);
            fs::remove(point / "lost+found");
            if (!becomeUser(unknownUser())) // root may look at everything
                return "no other user";
            return searchBundles({.folders = {point}, .system = "/System"}, [](const auto&) { return true; })
                       ? "complete"
                       : "not complete";
        });
    };
    const std::string whole = searched(fs::perms::all);
    if (whole.starts_with("no "))
        GTEST_SKIP() << whole;
    EXPECT_EQ(whole, "complete");
    EXPECT_EQ(searched(fs::perms::others_read), "not complete") << "the names alone are told";
}

} // namespace vantry::CleanupScanner
