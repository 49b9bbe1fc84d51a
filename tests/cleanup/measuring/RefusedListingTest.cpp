// Folders that can be opened, and not be listed.

#include "cleanup/measuring/BundleSearch.h"
#include "cleanup/measuring/DiskUsage.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
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

} // namespace vantry::CleanupScanner
