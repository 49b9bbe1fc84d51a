#include "platform/Sandbox.h"

#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/resource.h>

namespace vantry {

TEST(MemoryLimit, LeavesNoCoreFile) {
    const std::string said = inChildProcess([]() -> std::string {
        static_cast<void>(limitMemory(64 << 20));
        rlimit limit = {};
        getrlimit(RLIMIT_CORE, &limit);
        return limit.rlim_cur == 0 && limit.rlim_max == 0 ? "none" : "some";
    });
    EXPECT_EQ(said, "none");
}

} // namespace vantry
