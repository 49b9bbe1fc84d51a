#include "app/StatusText.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace vantry {

namespace {

const SystemTime statusTime{std::chrono::seconds(1'700'000'000)}; // 2023-11-14 22:13:20 UTC
const StorageSnapshot snapshot{"Data", 500'000'000'000, 200'000'000'000, statusTime};

nlohmann::ordered_json parsed(const StorageSnapshot& given) { return nlohmann::ordered_json::parse(statusJson(given)); }

TEST(StatusText, ListsTheFiguresInColumns) {
    EXPECT_EQ(statusText(snapshot), "Data\n"
                                    "Total          500 GB          500000000000 bytes\n"
                                    "Used           300 GB          300000000000 bytes  60%\n"
                                    "Available      200 GB          200000000000 bytes\n"
                                    "Read       " +
                                        dateTimeText(statusTime) + "\n");
}

TEST(StatusText, UsesEveryUnit) {
    EXPECT_EQ(statusText({"tiny", 1000, 999, statusTime}), "tiny\n"
                                                           "Total            1 KB                  1000 bytes\n"
                                                           "Used           1 byte                     1 bytes  0.1%\n"
                                                           "Available   999 bytes                   999 bytes\n"
                                                           "Read       " +
                                                               dateTimeText(statusTime) + "\n");
}

TEST(StatusText, KeepsTheNameAsItIs) {
    for (const std::string name : {"", "Müller’s “Disk”", "Disk\xff", "\"quoted\"", "a{}b%s"})
        EXPECT_TRUE(statusText({name, 10, 5, statusTime}).starts_with(name + "\nTotal "));
}

TEST(StatusJson, IsOneLineWithTheseFieldsInThisOrder) {
    EXPECT_EQ(
        statusJson(snapshot),
        R"({"volumeName":"Data","totalBytes":500000000000,"usedBytes":300000000000,"availableBytes":200000000000,)"
        R"("totalText":"500 GB","usedText":"300 GB","availableText":"200 GB","usedFraction":0.6,)"
        R"("updatedAt":"2023-11-14T22:13:20Z"})"
        "\n");
}

TEST(StatusJson, HasTheReservedBytesWhereTheyAreKnown) {
    auto given = snapshot;
    EXPECT_FALSE(parsed(given).contains("reservedBytes"));
    given.reservedBytes = 0;
    EXPECT_EQ(parsed(given)["reservedBytes"], 0);
    given.reservedBytes = 5'000;
    EXPECT_EQ(parsed(given)["reservedBytes"], 5'000);
    EXPECT_EQ(parsed(given)["totalBytes"], 500'000'000'000);
}

TEST(StatusJson, GivesBytesExactly) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    const auto object = parsed({"Large", largest, 1, statusTime});
    EXPECT_EQ(object["totalBytes"].get<std::int64_t>(), largest);
    EXPECT_EQ(object["usedBytes"].get<std::int64_t>(), largest - 1);
    EXPECT_EQ(object["availableBytes"].get<std::int64_t>(), 1);
    EXPECT_EQ(object["usedFraction"].get<double>(), 1.0);
}

TEST(StatusJson, TheUsedFractionIsANumberWhateverTheTotal) {
    struct Case {
        std::int64_t total;
        std::int64_t available;
        double fraction;
    };
    for (const auto& [total, available, fraction] :
         {Case{0, 0, 0}, Case{-1, -5, 0}, Case{100, 100, 0}, Case{100, 150, 0}, Case{100, 0, 1}, Case{8, 7, 0.125}}) {
        const auto object = parsed({"Data", total, available, statusTime});
        ASSERT_TRUE(object["usedFraction"].is_number());
        EXPECT_EQ(object["usedFraction"].get<double>(), fraction);
    }
}

TEST(StatusJson, EveryNameComesThroughOnOneLine) {
    struct Case {
        std::string stored;
        std::string read;
    };
    const std::vector<Case> cases{
        {"", ""},
        {"My \"Disk\" \\ 1", "My \"Disk\" \\ 1"},
        {"two\nlines\tand a tab", "two\nlines\tand a tab"},
        {"Müller’s 磁盘 💾", "Müller’s 磁盘 💾"},
        {"Disk\xff", "Disk\uFFFD"},
        {"\xc3", "\uFFFD"},
    };
    for (const auto& [stored, read] : cases) {
        const StorageSnapshot named{stored, 100, 50, statusTime};
        const std::string text = statusJson(named);
        SCOPED_TRACE(text);
        EXPECT_EQ(std::ranges::count(text, '\n'), 1);
        EXPECT_TRUE(text.ends_with("}\n"));
        EXPECT_EQ(parsed(named)["volumeName"].get<std::string>(), read);
    }
}

TEST(StatusJson, TheTimeIsUtcToTheSecond) {
    EXPECT_EQ(parsed({"Data", 1, 1, statusTime + std::chrono::milliseconds(999)})["updatedAt"], "2023-11-14T22:13:20Z");
    EXPECT_EQ(parsed({"Data", 1, 1, SystemTime{}})["updatedAt"], "1970-01-01T00:00:00Z");
}

} // namespace

} // namespace vantry
