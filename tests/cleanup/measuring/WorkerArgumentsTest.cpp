#include "cleanup/measuring/WorkerArguments.h"

#include "tests/support/CommaLocale.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

using Arguments = std::vector<std::string>;

const WorkerJob nothing;

std::optional<WorkerJob> jobWithBudget(const std::string& budget) {
    return workerJob(Arguments{"--directory-metrics-worker", "/folder", budget});
}

} // namespace

TEST(WorkerArguments, WithoutAFlagInFrontAskForNoWorker) {
    const Arguments cases[] = {
        {},
        {""},
        {"--show-cleanup"},
        {"--directory-metrics-worker "},
        {"--directory-metrics-worke"},
        {"--directory-metrics-workers", "/folder", "1"},
        {"--Directory-Metrics-Worker", "/folder", "1"},
        {"--directory-metrics-worker=/folder", "1"},
        {"-directory-metrics-worker", "/folder", "1"},
        {"--shallow-children-worker\0"s, "/folder", "/file"},
        {"--show-cleanup", "--directory-metrics-worker", "/folder", "1"},
        {"/folder", "--shallow-children-worker", "/file"},
    };
    for (const auto& arguments : cases)
        EXPECT_EQ(workerJob(arguments), std::nullopt) << testing::PrintToString(arguments);
}

TEST(WorkerArguments, InTheRightNumberDescribeAJob) {
    EXPECT_EQ(workerJob(Arguments{"--directory-metrics-worker", "/a folder", "0.5"}),
              WorkerJob(MeasuringJob{"/a folder", 500ms}));
    EXPECT_EQ(workerJob(Arguments{"--children-metrics-worker", "/a folder", "4"}),
              WorkerJob(MeasuringChildrenJob{"/a folder", 3s}));
    EXPECT_EQ(workerJob(Arguments{"--children-metrics-worker", "/a folder", "0"}), nothing);
    EXPECT_EQ(workerJob(Arguments{"--disk-usage-worker", "/a folder", "4"}),
              WorkerJob(DiskUsageJob{"/a folder", 3s, {}}));
    EXPECT_EQ(workerJob(Arguments{"--disk-usage-worker", "/a folder", "0.5", ".vdi", ""}),
              WorkerJob(DiskUsageJob{"/a folder", 500ms, {".vdi", ""}}));
    EXPECT_EQ(workerJob(Arguments{"--disk-usage-worker", "/a folder", "abc", ".vdi"}), nothing);
    EXPECT_EQ(workerJob(Arguments{"--disk-usage-worker", "/a folder"}), nothing);
    EXPECT_EQ(workerJob(Arguments{"--shallow-children-worker", "/a folder", "/tmp/list"}),
              WorkerJob(ListingJob{"/a folder", "/tmp/list"}));
    EXPECT_EQ(workerJob(Arguments{"--shallow-children-worker", "", ""}), WorkerJob(ListingJob{"", ""}));
    EXPECT_EQ(workerJob(Arguments{"--shallow-children-worker", "--directory-metrics-worker", "1"}),
              WorkerJob(ListingJob{"--directory-metrics-worker", "1"}));
    EXPECT_EQ(workerJob(Arguments{"--directory-metrics-worker", "caf\xe9\n", "1"}),
              WorkerJob(MeasuringJob{"caf\xe9\n", 1s}));
}

TEST(WorkerArguments, NameTheKeysAndThenThePropertyLists) {
    const auto job = [](Arguments arguments) {
        arguments.insert(arguments.begin(), "--property-list-worker");
        return workerJob(arguments);
    };
    EXPECT_EQ(job({"1", "key", "/a", "/b"}), WorkerJob(PropertyListJob{{"key"}, {"/a", "/b"}}));
    EXPECT_EQ(job({"2", "", "--x", ""}), WorkerJob(PropertyListJob{{"", "--x"}, {""}}));
    EXPECT_EQ(job({"0", "/a"}), WorkerJob(PropertyListJob{{}, {"/a"}}));
    EXPECT_EQ(job({"2", "a", "b"}), WorkerJob(PropertyListJob{{"a", "b"}, {}}));
    EXPECT_EQ(job({"1", "key", "caf\xe9\n"}), WorkerJob(PropertyListJob{{"key"}, {"caf\xe9\n"}}));
    EXPECT_EQ(job({}), nothing);
    for (const auto& count : {""s, "2"s, "3"s, "-1"s, "+1"s, " 1"s, "1 "s, "1.0"s, "1e0"s, "0x1"s, "a"s, "1\0"s,
                              "18446744073709551616"s, "18446744073709551615"s})
        EXPECT_EQ(job({count, "/a"}), nothing) << count;
}

TEST(WorkerArguments, NameTheSystemFolderAndThenTheFoldersOfApplications) {
    EXPECT_EQ(
        workerJob(std::vector<std::string>{bundleIdentifiersFlag, "/System", "/Applications"}),
        (WorkerJob(BundleIdentifiersJob{{.folders = {std::filesystem::path("/Applications")}, .system = "/System"}})));
    EXPECT_EQ(workerJob(std::vector<std::string>{bundleIdentifiersFlag, "/System", "/Applications", "--x"}),
              WorkerJob(BundleIdentifiersJob{{.folders = {"/Applications", "--x"}, .system = "/System"}}));
    for (const auto& few : {std::vector<std::string>{bundleIdentifiersFlag}, {bundleIdentifiersFlag, "/System"}})
        EXPECT_EQ(workerJob(few), WorkerJob());
}

TEST(WorkerArguments, InAWrongNumberAskAWorkerForNothing) {
    for (const char* flag : {"--directory-metrics-worker", "--children-metrics-worker", "--shallow-children-worker"})
        for (const auto& arguments : {Arguments{flag}, Arguments{flag, "/folder"}, Arguments{flag, "/folder", "1", "2"},
                                      Arguments{flag, "/folder", "1", ""}, Arguments{flag, "/folder", "1", "2", "3"}})
            EXPECT_EQ(workerJob(arguments), nothing) << testing::PrintToString(arguments);
}

TEST(WorkerArguments, TakeADecimalNumberOfSecondsUpToThree) {
    const struct {
        std::string text;
        std::chrono::nanoseconds budget;
    } cases[] = {
        {"1", 1s},       {"0.5", 500ms},    {"0.500000", 500ms}, {"00.25", 250ms}, {"2.75", 2750ms},
        {"3", 3s},       {"3.000001", 3s},  {"4", 3s},           {"100000", 3s},   {"1e0", 1s},
        {"5e-1", 500ms}, {"5E-1", 500ms},   {"1e300", 3s},       {"+1", 1s},       {".5", 500ms},
        {"1.", 1s},      {"0.000001", 1us}, {"1e-9", 1ns},       {"1e-300", 0ns},  {"2e+0", 2s},
    };
    for (const auto& [text, budget] : cases)
        EXPECT_EQ(jobWithBudget(text), WorkerJob(MeasuringJob{"/folder", budget})) << text;
}

TEST(WorkerArguments, RejectABudgetThatIsNotAPositiveNumber) {
    for (const auto& text :
         {""s,      "0"s,   "0.0"s, "-0"s,    "+0"s,    "0e9"s,   "1e-400"s, "-1"s,       "-0.5"s,  "-1e400"s,
          "abc"s,   "1s"s,  "nan"s, "NaN"s,   "-nan"s,  "inf"s,   "-inf"s,   "Infinity"s, "1e400"s, "1e99999999999"s,
          " 1"s,    "1 "s,  "\t1"s, "1\n"s,   "1 2"s,   "0x1"s,   "0x1p0"s,  "1,5"s,      "1.5.5"s, "1..5"s,
          "1-2"s,   "1+2"s, "--1"s, "+-1"s,   "++1"s,   "-"s,     "+"s,      "."s,        "e"s,     "e1"s,
          ".e1"s,   "1e"s,  "1e+"s, "1e1.5"s, "1e1e1"s, "1_000"s, "1'000"s,  "\xd9\xa1"s, "1\0"s,   "\0001"s,
          "1\xff"s, "1f"s,  "1d"s,  "1l"s,    "½"s})
        EXPECT_EQ(jobWithBudget(text), nothing) << text;
}

TEST(WorkerArguments, AreReadTheSameInALocaleWithADecimalComma) {
    const CommaLocale locale;
    if (!locale.isSet())
        GTEST_SKIP() << "there is no locale with a decimal comma";
    EXPECT_EQ(jobWithBudget("0.5"), WorkerJob(MeasuringJob{"/folder", 500ms}));
    EXPECT_EQ(jobWithBudget("1.500"),
              WorkerJob(MeasuringJob{"/folder", 1500ms})); // the point separates thousands in that locale
    EXPECT_EQ(jobWithBudget("0,5"), nothing);
    EXPECT_EQ(jobWithBudget("1,5"), nothing);
}

} // namespace vantry::CleanupScanner
