#include "base/UniqueFd.h"

#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace vantry {

namespace {

int openSomething() { return open("/dev/null", O_RDONLY | O_CLOEXEC); }
bool isOpen(int fd) { return fcntl(fd, F_GETFD) != -1; }

} // namespace

TEST(UniqueFd, CannotBeCopied) {
    static_assert(!std::is_copy_constructible_v<UniqueFd> && !std::is_copy_assignable_v<UniqueFd>);
    static_assert(std::is_nothrow_move_constructible_v<UniqueFd> && std::is_nothrow_move_assignable_v<UniqueFd>);
    static_assert(!std::is_convertible_v<int, UniqueFd>);
}

TEST(UniqueFd, HoldsNothingUnlessToldOtherwise) {
    const UniqueFd none;
    EXPECT_EQ(none.get(), -1);
    EXPECT_FALSE(none);
    EXPECT_FALSE(UniqueFd(-1));
}

TEST(UniqueFd, ZeroIsADescriptorToo) {
    const std::string answer = inChildProcess([]() -> std::string {
        if (dup2(openSomething(), 0) != 0)
            return "no descriptor";
        {
            const UniqueFd standardInput(0);
            if (!standardInput)
                return "taken for none";
        }
        return isOpen(0) ? "left open" : "closed";
    });
    EXPECT_EQ(answer, "closed");
}

TEST(UniqueFd, ClosesWhatItOwnsAtTheEnd) {
    const int fd = openSomething();
    {
        const UniqueFd owner(fd);
        EXPECT_TRUE(owner);
        EXPECT_EQ(owner.get(), fd);
        EXPECT_TRUE(isOpen(fd));
    }
    EXPECT_FALSE(isOpen(fd));
}

TEST(UniqueFd, AReleasedDescriptorStaysOpen) {
    const int fd = openSomething();
    {
        UniqueFd owner(fd);
        EXPECT_EQ(owner.release(), fd);
        EXPECT_FALSE(owner);
        EXPECT_EQ(owner.release(), -1);
    }
    EXPECT_TRUE(isOpen(fd));
    close(fd);
}

TEST(UniqueFd, AResetClosesTheOldDescriptorAndOwnsTheNewOne) {
    const int first = openSomething();
    const int second = openSomething();
    UniqueFd owner(first);
    owner.reset(second);
    EXPECT_FALSE(isOpen(first));
    EXPECT_TRUE(isOpen(second));
    EXPECT_EQ(owner.get(), second);
    owner.reset();
    EXPECT_FALSE(isOpen(second));
    EXPECT_FALSE(owner);
}

TEST(UniqueFd, AMoveHandsTheDescriptorOver) {
    const int fd = openSomething();
    std::optional<UniqueFd> source(std::in_place, fd);
    {
        const UniqueFd target(std::move(*source));
        EXPECT_EQ(target.get(), fd);
        EXPECT_EQ(source->get(), -1); // NOLINT(bugprone-use-after-move): what a move leaves behind
        source.reset();
        EXPECT_TRUE(isOpen(fd)) << "the source closed what it no longer owned";
    }
    EXPECT_FALSE(isOpen(fd));
}

TEST(UniqueFd, AMoveAssignmentClosesWhatTheTargetHeld) {
    const int first = openSomething();
    const int second = openSomething();
    UniqueFd target(first);
    {
        UniqueFd source(second);
        target = std::move(source);
        EXPECT_FALSE(isOpen(first));
        EXPECT_EQ(source.get(), -1); // NOLINT(bugprone-use-after-move): what a move leaves behind
    }
    EXPECT_EQ(target.get(), second);
    EXPECT_TRUE(isOpen(second));
}

TEST(UniqueFd, AssigningItToItselfKeepsItOpen) {
    const int fd = openSomething();
    UniqueFd owner(fd);
    UniqueFd& same = owner;
    owner = std::move(same);
    EXPECT_EQ(owner.get(), fd);
    EXPECT_TRUE(isOpen(fd));
}

TEST(UniqueFd, ADescriptorThatWasClosedIsNotClosedAgain) {
    const int fd = openSomething();
    UniqueFd owner(fd);
    owner.reset();
    // The system gives the lowest number that is free, so this one is at risk.
    UniqueFd successor(openSomething());
    ASSERT_EQ(successor.get(), fd);
    owner.reset();
    { const UniqueFd moved(std::move(owner)); }
    EXPECT_TRUE(isOpen(successor.get()));
}

} // namespace vantry
