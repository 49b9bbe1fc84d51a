#include "cleanup/measuring/BundleIdentifiers.h"

#include "cleanup/measuring/PropertyListPayload.h"
#include "tests/cleanup/measuring/WorkerHostFixture.h"
#include "tests/support/RecordedPolls.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

using namespace std::chrono_literals;

using Identifiers = std::optional<std::set<std::string>>;

/// Ombrel's own worker.
class BundleIdentifiers : public WorkerHostFixture {
protected:
    BundleIdentifiers() : WorkerHostFixture(OMBREL_EXECUTABLE) {}

    void bundle(const fs::path& path, const std::string& identifier) const {
        fs::create_directories(path / "Contents");
        writeFile(path / "Contents/Info.plist",
                  "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier + "</string></dict></plist>");
    }
    /// Asks again when the worker was late, on a machine that is busy.
    [[nodiscard]] Identifiers identifiers() {
        Identifiers answer;
        for (int attempt = 0; attempt < 20 && !answer; ++attempt)
            answer =
                host.bundleIdentifiers({.folders = {root / "One", root / "Two"}, .system = root / "System"}, farAway());
        return answer;
    }
};

/// A program in the place of Ombrel's executable.
class BundleIdentifiersOfADouble : public WorkerHostFixture {
protected:
    BundleIdentifiersOfADouble() : WorkerHostFixture(OMBREL_PROPERTY_LIST_WORKER_DOUBLE) {}

    [[nodiscard]] Identifiers of(std::vector<std::string> behaviours, Deadline deadline = farAway()) {
        ApplicationPlaces places{.folders = {}, .system = root / "System"};
        for (const auto& behaviour : behaviours)
            places.folders.push_back(root / behaviour);
        return host.bundleIdentifiers(places, deadline);
    }
};

} // namespace

TEST_F(BundleIdentifiers, AreThoseOfAllBundlesAndOfOneWorker) {
    EXPECT_EQ(identifiers(), std::set<std::string>()) << "no folder of applications is there";
    bundle(root / "One/A.app", "com.example.a");
    bundle(root / "One/A.app/Contents/Applications/B.app", "com.example.b");
    bundle(root / "Two/Deep/er/C.app", "\xc3\xa9 \"quoted\"");
    EXPECT_EQ(identifiers(), (std::set<std::string>{"com.example.a", "com.example.b", "\xc3\xa9 \"quoted\""}));
    EXPECT_FALSE(hasChildren());
}

TEST_F(BundleIdentifiers, AreAbsentWhenABundleCannotBeExamined) {
    bundle(root / "One/A.app", "com.example.a");
    bundle(root / "Elsewhere.app", "com.example.elsewhere");
    fs::create_directory_symlink(root / "Elsewhere.app", root / "One/B.app");
    const ApplicationPlaces places{.folders = {root / "One"}, .system = root / "System"};
    EXPECT_EQ(host.bundleIdentifiers(places, farAway()), std::nullopt);
}

TEST_F(BundleIdentifiers, OfALargeToolAreAllFound) {
    const TemporaryFolder large(folderForManyFiles());
    const auto tool = large / "Tool.app";
    constexpr int folders = 300;
    constexpr int filesInEach = 1000;
    for (int i = 0; i < folders; ++i) {
        // Half of them where bundles may be, half of them in resources.
        const auto folder =
            tool / (i % 2 == 0 ? "Contents/Developer/Library" : "Contents/Resources") / std::to_string(i);
        fs::create_directories(folder);
        writeFile(folder / "0", "");
        for (int j = 1; j < filesInEach; ++j)
            fs::create_hard_link(folder / "0", folder / std::to_string(j));
    }
    bundle(tool, "com.example.tool");
    bundle(tool / "Contents/Developer/Applications/Simulator.app", "com.example.simulator");
    bundle(tool / "Contents/Developer/Library/298/Deep.app", "com.example.deep");
    const ApplicationPlaces places{.folders = {large.path()}, .system = root / "System"};
    EXPECT_EQ(host.bundleIdentifiers(places, deadlineIn(10s)),
              (std::set<std::string>{"com.example.tool", "com.example.simulator", "com.example.deep"}));
}

TEST_F(BundleIdentifiers, AreWrittenEveryHundredMillisecondsAndAtTheEnd) {
    for (const char* name : {"a", "b", "c", "d"})
        fs::create_directories(root / "One" / name);
    const auto written = [&](std::chrono::milliseconds betweenFolders) {
        std::vector<std::string> lines;
        std::chrono::steady_clock::time_point time;
        writeBundleIdentifiers(
            {.folders = {root / "One"}, .system = root / "System"},
            [&](std::string_view text) {
                lines.emplace_back(text);
                return true;
            },
            [&] { return time += betweenFolders; });
        return lines;
    };
    const std::string sign = encoded(PropertyListPayload());
    EXPECT_EQ(written(99ms), (std::vector<std::string>{sign, sign, "complete\n"})) << "at 198 ms and at 396 ms";
    EXPECT_EQ(written(100ms), (std::vector<std::string>{sign, sign, sign, sign, sign, "complete\n"}));
    EXPECT_EQ(written(1ms), std::vector<std::string>{"complete\n"});
    bundle(root / "One/b/A.app", "com.example.a");
    bundle(root / "One/b/B.app", "com.example.b");
    const auto together = written(0ms);
    ASSERT_EQ(together.size(), 1U);
    EXPECT_NE(together[0].find("com.example.a"), std::string::npos);
    EXPECT_TRUE(together[0].ends_with("complete\n"));
    std::string apart;
    for (const auto& lines : written(100ms))
        apart += lines == sign ? "" : lines;
    EXPECT_EQ(apart, together[0]) << "every identifier once";
}

TEST_F(BundleIdentifiers, AreWrittenAsSoonAsTheyFillSixteenKibibytes) {
    constexpr std::size_t fill = 16 << 10;
    for (int i = 0; i < 20; ++i)
        bundle(root / "One" / (std::to_string(i) + ".app"), std::to_string(i) + std::string(1000, 'x'));
    std::vector<std::size_t> sizes;
    writeBundleIdentifiers(
        {.folders = {root / "One"}, .system = root / "System"},
        [&](std::string_view text) {
            sizes.push_back(text.size());
            return true;
        },
        [] { return std::chrono::steady_clock::time_point(); });
    ASSERT_EQ(sizes.size(), 2U);
    EXPECT_GE(sizes[0], fill);
    EXPECT_LT(sizes[0], fill + 1030) << "one identifier more";
}

TEST_F(BundleIdentifiers, AreAllReadWhenTheyAreWrittenInPieces) {
    std::set<std::string> expected;
    for (int i = 0; i < 40; ++i) {
        expected.insert(std::to_string(i) + std::string(1000, 'x'));
        bundle(root / "One" / (std::to_string(i) + ".app"), std::to_string(i) + std::string(1000, 'x'));
    }
    EXPECT_EQ(identifiers(), expected);
}

TEST_F(BundleIdentifiers, AreAbsentWhenTheWorkerCannotBeStarted) {
    const ApplicationPlaces places{.folders = {root / "One"}, .system = root / "System"};
    EXPECT_EQ(readBundleIdentifiers(root / "missing", places, farAway(), nullptr), std::nullopt);
}

TEST_F(BundleIdentifiersOfADouble, AreTakenUpToTheLastLine) {
    EXPECT_EQ(of({"identifies", "is-no-list", "identifies", "completes"}), std::set<std::string>{"a"});
    EXPECT_EQ(of({"completes"}), std::set<std::string>());
    EXPECT_EQ(of({"takes-its-time", "identifies", "completes"}), std::set<std::string>{"a"});
}

TEST_F(BundleIdentifiersOfADouble, AreAbsentWhenTheWorkerDoesNotFinish) {
    for (const char* fault :
         {"ends", "ends-in-its-answer", "kills-itself", "closes-its-output", "hangs", "hangs-in-its-answer",
          "stops-itself", "ignores-the-request-to-end", "writes-garbage", "writes-an-empty-line", "tells-another-key",
          "answers", "writes-a-line-without-end", "writes-lines-without-end"}) {
        RecordedPolls::forget();
        EXPECT_EQ(of({"identifies", fault, "completes"}), std::nullopt) << fault;
        EXPECT_LE(RecordedPolls::waitedInVain(), 1s + 2 * 120ms + 10ms) << fault;
        EXPECT_FALSE(hasChildren()) << fault;
    }
}

TEST_F(BundleIdentifiersOfADouble, AreAbsentBeyondTheDeadline) {
    RecordedPolls::forget();
    EXPECT_EQ(of({"completes"}, Deadline::min()), std::nullopt);
    EXPECT_EQ(RecordedPolls::count(), 0) << "the end of a worker would be waited for";
    EXPECT_EQ(of({"hangs", "completes"}, deadlineIn(100ms)), std::nullopt);
    EXPECT_LE(RecordedPolls::waitedInVain(), 100ms + 2 * 120ms + 10ms);
}

} // namespace vantry::CleanupScanner
