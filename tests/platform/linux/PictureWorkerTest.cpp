// The parent of picture workers, and workers that misbehave.

#include "platform/linux/PictureWorker.h"
#include "tests/support/EndedChild.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace vantry {

namespace {

using namespace std::chrono_literals;

class PictureWorker : public testing::Test {
protected:
    /// A worker that is a script.
    [[nodiscard]] std::optional<PicturePixels> read(const std::string& script,
                                                    std::chrono::milliseconds patience) const {
        writeFile(root / "worker", "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(root / "worker", std::filesystem::perms::owner_all);
        return readPictureInWorker(root / "worker", "a.png", patience);
    }

    const TemporaryFolder root;
};

constexpr const char* picture = "head -c 65536 /dev/zero"; // a transparent one

} // namespace

TEST_F(PictureWorker, ThatWritesAPictureIsBelieved) {
    const auto pixels = read(picture, 30s);
    ASSERT_TRUE(pixels);
    EXPECT_EQ(*pixels, PicturePixels(pictureSide * pictureSide, PicturePixel{0, 0, 0, 0}));
    EXPECT_FALSE(hasChildren());
}

TEST_F(PictureWorker, GetsItsFlagAndTheFile) {
    EXPECT_TRUE(
        read(std::string("[ $# = 2 ] && [ \"$1\" = --picture-worker ] && [ \"$2\" = a.png ] && ") + picture, 30s));
}

TEST_F(PictureWorker, ThatFailsIsNotBelieved) {
    for (const char* script : {
             "exit 0",
             "exit 1",
             "head -c 65535 /dev/zero",
             "head -c 65537 /dev/zero",
             "head -c 65536 /dev/zero; exit 1",
             "head -c 65536 /dev/zero; kill -KILL $$",
             "head -c 65536 /dev/zero; kill -SEGV $$",
             "exec yes",
         }) {
        EXPECT_FALSE(read(script, 30s)) << script;
        EXPECT_FALSE(hasChildren()) << script;
    }
}

TEST_F(PictureWorker, ThatHangsIsKilled) {
    for (const char* script : {
             "exec sleep 60",
             "head -c 65536 /dev/zero; exec sleep 60",
             "head -c 65536 /dev/zero; exec >&-; exec sleep 60",
             "exec >&-; exec sleep 60",
             "trap '' TERM; head -c 65536 /dev/zero; while :; do :; done",
             "kill -STOP $$",
         }) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_FALSE(read(script, 300ms)) << script;
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s) << script; // half a second where nothing else runs
        EXPECT_FALSE(hasChildren()) << script;
    }
}

TEST_F(PictureWorker, IsNotWaitedForWhileItsOwnChildrenRun) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(read(std::string("sleep 20 & ") + picture, 60s));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 15s);
}

TEST_F(PictureWorker, ThatCannotBeStartedGivesNoPicture) {
    EXPECT_FALSE(readPictureInWorker(root / "missing", "a.png", 30s));
    EXPECT_FALSE(readPictureInWorker(root.path(), "a.png", 30s));
    EXPECT_FALSE(hasChildren());
}

TEST_F(PictureWorker, LeavesNoDescriptorBehind) {
    const auto before = openDescriptorCount();
    EXPECT_TRUE(read(picture, 30s));
    EXPECT_FALSE(read("exec sleep 60", 10ms));
    EXPECT_EQ(openDescriptorCount(), before);
}

TEST_F(PictureWorker, MayRunBesideOthers) {
    static_cast<void>(read(picture, 30s));
    std::vector<std::thread> readers;
    std::atomic<int> count = 0;
    for (int i = 0; i < 8; ++i)
        readers.emplace_back([this, &count] { count += readPictureInWorker(root / "worker", "a.png", 60s) ? 1 : 0; });
    for (auto& reader : readers)
        reader.join();
    EXPECT_EQ(count, 8);
    EXPECT_FALSE(hasChildren());
}

TEST_F(PictureWorker, WithOtherArgumentsDoesNothing) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{pictureWorkerFlag}, {pictureWorkerFlag, "a", "b"}, {pictureWorkerFlag, ""}}) {
        const auto ended = endOf(OMBREL_EXECUTABLE, arguments);
        EXPECT_EQ(ended.output, "");
        EXPECT_EQ(ended.status, EXIT_FAILURE);
    }
    const std::vector<std::string> other{"--status", pictureWorkerFlag};
    EXPECT_FALSE(runPictureWorkerIfRequested(other));
    EXPECT_FALSE(runPictureWorkerIfRequested({}));
}

} // namespace vantry
