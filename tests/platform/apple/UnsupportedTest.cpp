// What macOS does not offer is said, and not passed over.

#include "platform/Sandbox.h"
#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <string>

namespace vantry {

TEST(Unsupported, AreMemoryLimitsAndWriteProtection) {
    const std::string said = inChildProcess([]() -> std::string {
        const auto limited = limitMemory(1 << 30);
        return limited ? "limited" : limited.error().kind == ErrorKind::unsupported ? "unsupported" : "failed";
    });
    EXPECT_EQ(said, "unsupported");
    const auto protectedFromWriting = giveUpChangingFiles();
    ASSERT_FALSE(protectedFromWriting);
    EXPECT_EQ(protectedFromWriting.error().kind, ErrorKind::unsupported);
}

} // namespace vantry
