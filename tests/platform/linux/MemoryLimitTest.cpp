#include "platform/Sandbox.h"

#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <sys/mman.h>

namespace vantry {

namespace {

constexpr std::size_t mebibyte = 1 << 20;

bool canHave(std::size_t bytes) {
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED && munmap(memory, bytes) == 0;
}

} // namespace

TEST(MemoryLimit, HoldsAProcessToWhatItHasAndALittleMoreForGood) {
    const std::string said = inChildProcess([]() -> std::string {
        if (const auto limited = limitMemory(64 * mebibyte); !limited)
            return limited.error().kind == ErrorKind::unsupported ? "unsupported" : limited.error().message;
        if (!canHave(60 * mebibyte) || canHave(65 * mebibyte))
            return "another limit";
        if (const auto again = limitMemory(256 * mebibyte); !again || canHave(65 * mebibyte))
            return "raised";
        return "limited";
    });
    if (said == "unsupported")
        GTEST_SKIP() << "a sanitizer needs the address space";
    EXPECT_EQ(said, "limited");
}

} // namespace vantry
