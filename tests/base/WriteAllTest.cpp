#include "base/WriteAll.h"

#include "base/UniqueFd.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace vantry {
namespace {

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
};

Pipe makePipe() {
    std::array<int, 2> ends{-1, -1};
    EXPECT_EQ(pipe(ends.data()), 0);
    return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

TEST(WriteAll, WritesMoreThanAPipeHolds) {
    auto [readEnd, writeEnd] = makePipe();
    const std::string text = std::string(300'000, 'a') + std::string(300'000, 'b');
    std::string received;
    std::thread reader([&received, fd = readEnd.get()] {
        std::array<char, 1000> piece{};
        for (ssize_t length = 0; (length = read(fd, piece.data(), piece.size())) > 0;)
            received.append(piece.data(), static_cast<std::size_t>(length));
    });
    EXPECT_EQ(writeAll(writeEnd.get(), text), 0);
    writeEnd.reset();
    reader.join();
    EXPECT_EQ(received, text);
}

TEST(WriteAll, NothingIsWrittenAtOnce) { EXPECT_EQ(writeAll(-1, ""), 0); }

TEST(WriteAll, ReturnsTheReasonOfAFailure) {
    EXPECT_EQ(writeAll(-1, "text"), EBADF);
    const TemporaryFolder folder;
    const auto answer = inChildProcess([&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{10, 10};
        setrlimit(RLIMIT_FSIZE, &limit);
        const UniqueFd file(open((folder / "file").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        return std::to_string(writeAll(file.get(), "longer than ten"));
    });
    EXPECT_EQ(answer, std::to_string(EFBIG));
    EXPECT_EQ(readFile(folder / "file"), "longer tha");
}

TEST(WriteAll, GivesUpWhenNobodyReads) {
    const auto [readEnd, writeEnd] = makePipe();
    ASSERT_EQ(fcntl(writeEnd.get(), F_SETFL, O_NONBLOCK), 0);
    EXPECT_EQ(writeAll(writeEnd.get(), std::string(10'000'000, 'x')), EAGAIN);
}

} // namespace
} // namespace vantry
