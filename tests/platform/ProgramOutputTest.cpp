#include "platform/SupervisedChild.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace vantry {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t enough = 1 << 20;

std::optional<std::string> outputOf(const std::string& script, std::size_t limit = enough,
                                    std::chrono::milliseconds patience = 20s) {
    return programOutput("/bin/sh", {"-c", script}, limit, deadlineIn(patience));
}

} // namespace

TEST(ProgramOutput, IsReadFromAProgramThatSucceeds) {
    EXPECT_EQ(outputOf("echo one; echo two >&2; echo three"), "one\nthree\n");
    EXPECT_EQ(outputOf(""), "");
    EXPECT_EQ(outputOf("printf 'a\\000b'"), std::string("a\0b", 3));
}

TEST(ProgramOutput, MayBeLargerThanAPipe) {
    const auto output = outputOf("head -c 500000 /dev/zero");
    ASSERT_TRUE(output);
    EXPECT_EQ(output->size(), 500'000U);
}

TEST(ProgramOutput, IsAbsentWhenTheProgramFailsOrIsMissing) {
    EXPECT_EQ(outputOf("echo one; exit 1"), std::nullopt);
    EXPECT_EQ(outputOf("echo one; kill -9 $$"), std::nullopt);
    EXPECT_EQ(programOutput("/no/such/program", {}, enough, deadlineIn(20s)), std::nullopt);
}

TEST(ProgramOutput, IsReadDespiteAnAllowedStatus) {
    const auto output = [](const char* script) {
        return programOutput("/bin/sh", {"-c", script}, enough, deadlineIn(20s), 1);
    };
    EXPECT_EQ(output("echo one; exit 1"), "one\n");
    EXPECT_EQ(output("echo one"), "one\n");
    EXPECT_EQ(output("echo one; exit 2"), std::nullopt);
    EXPECT_EQ(output("echo one; kill -9 $$"), std::nullopt);
}

TEST(ProgramOutput, IsAbsentWhenItIsTooLarge) {
    EXPECT_EQ(outputOf("printf 12345", 5), "12345");
    EXPECT_EQ(outputOf("printf 123456", 5), std::nullopt);
    EXPECT_EQ(outputOf("cat /dev/zero", 100'000), std::nullopt);
}

TEST(ProgramOutput, IsAbsentAfterTheDeadline) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(outputOf("exec sleep 600", enough, 100ms), std::nullopt);
    EXPECT_EQ(outputOf("trap '' TERM; echo one; exec >&-; while :; do sleep 600; done", enough, 100ms), std::nullopt);
    EXPECT_EQ(programOutput("/bin/sh", {"-c", "echo one"}, enough, Deadline::min()), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 60s); // and not ten minutes
}

} // namespace vantry
