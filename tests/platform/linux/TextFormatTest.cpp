#include "platform/TextFormat.h"

#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>

#ifdef OMBREL_ADDRESS_SANITIZER
#include <sanitizer/lsan_interface.h>
#endif

namespace vantry {

namespace {

constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
constexpr auto mostBytes = std::numeric_limits<std::int64_t>::max();

constexpr SystemTime momentAt(std::int64_t secondsSince1970, std::int64_t nanoseconds = 0) {
    return SystemTime(std::chrono::seconds(secondsSince1970) + std::chrono::nanoseconds(nanoseconds));
}

constexpr std::int64_t morning = 1'769'847'342; // 2026-01-31T08:15:42Z, a Saturday

/// A user whose locale is that of the C library itself and whose clock shows UTC.
class TextFormat : public testing::Test {
protected:
    const ScopedEnvironment locale{"LC_ALL", "C"};
    const ScopedEnvironment timeZone{"TZ", "UTC0"};
};

/// A user of a locale that is compiled for the test, so that it need not be installed.
class TextFormatOfLocale : public testing::Test {
protected:
    [[nodiscard]] bool use(const std::string& name) {
        const std::string full = name + ".UTF-8";
        const std::string command =
            "localedef -i " + name + " -f UTF-8 --no-archive " + (folder / full).native() + " >/dev/null 2>&1";
        // Its exit status tells of warnings too.
        [[maybe_unused]] const int status = std::system(command.c_str());
        locale.emplace("LC_ALL", full.c_str());
        return std::filesystem::exists(folder / full / "LC_TIME");
    }

#ifdef OMBREL_ADDRESS_SANITIZER
    const __lsan::ScopedDisabler
        disabler; // the C library forgets what it makes of $LOCPATH each time it opens a locale
#endif
    const TemporaryFolder folder;
    const ScopedEnvironment locales{"LOCPATH", folder.path().c_str()};
    const ScopedEnvironment timeZone{"TZ", "UTC0"};
    std::optional<ScopedEnvironment> locale;
};

constexpr const char* cannotCompile = "this locale cannot be compiled here";

} // namespace

TEST_F(TextFormat, AByteCountTakesTheLargestUnitThatItFills) {
    const struct {
        std::int64_t bytes;
        const char* text;
    } cases[] = {
        {0, "0 B"},
        {1, "1 byte"},
        {2, "2 bytes"},
        {512, "512 bytes"},
        {999, "999 bytes"},
        // no fraction digits
        {1'000, "1 KB"},
        {1'001, "1 KB"},
        {1'499, "1 KB"},
        {1'500, "2 KB"},
        {2'499, "2 KB"},
        {2'500, "3 KB"},
        {12'345, "12 KB"},
        {999'499, "999 KB"},
        {999'500, "1 MB"}, // a figure that rounds up to 1000 takes the next unit
        {999'999, "1 MB"},
        // up to one
        {1'000'000, "1 MB"},
        {1'049'999, "1 MB"},
        {1'050'000, "1.1 MB"},
        {1'150'000, "1.2 MB"},
        {1'500'000, "1.5 MB"},
        {15'000'000, "15 MB"},
        {120'000'000, "120 MB"},
        {999'949'999, "999.9 MB"},
        {999'950'000, "1 GB"},
        {999'999'999, "1 GB"},
        // up to two
        {1'000'000'000, "1 GB"},
        {1'004'999'999, "1 GB"},
        {1'005'000'000, "1.01 GB"},
        {1'100'000'000, "1.1 GB"},
        {1'120'000'000, "1.12 GB"},
        {500'107'862'016, "500.11 GB"},
        {999'994'999'999, "999.99 GB"},
        {999'995'000'000, "1 TB"},
        {1'000'000'000'000, "1 TB"},
        {1'234'567'890'123, "1.23 TB"},
        {999'994'999'999'999, "999.99 TB"},
        {999'995'000'000'000, "1 PB"},
        {1'000'000'000'000'000, "1 PB"},
        {1'005'000'000'000'000, "1.01 PB"},
        {999'994'999'999'999'999, "999.99 PB"},
        {999'995'000'000'000'000, "1 EB"},
        {1'000'000'000'000'000'000, "1 EB"},
        {1'050'000'000'000'000'000, "1.05 EB"},
        {mostBytes, "9.22 EB"},
        {-1, "-1 byte"},
        {-2, "-2 bytes"},
        {-999, "-999 bytes"},
        {-1'499, "-1 KB"},
        {-1'500, "-2 KB"}, // away from zero on this side too
        {-999'950'000, "-1 GB"},
        {-1'234'567'890'123, "-1.23 TB"},
        {-mostBytes, "-9.22 EB"},
        {smallest, "-9.22 EB"},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(byteCountText(bytes), text) << bytes;
        EXPECT_EQ(byteCountText(bytes, ByteUnits::all), text) << bytes;
    }
}

TEST_F(TextFormat, AByteCountInGigabytesAndTerabytesTakesNoOtherUnit) {
    const struct {
        std::int64_t bytes;
        const char* text;
    } cases[] = {
        {0, "0 B"},
        {1, "0 GB"},
        {512, "0 GB"},
        {999, "0 GB"},
        {1'000, "0 GB"},
        {1'500, "0 GB"},
        {999'499, "0 GB"},
        {999'500, "0 GB"},
        {999'999, "0 GB"},
        {4'999'999, "0 GB"},
        {5'000'000, "0.01 GB"},
        {120'000'000, "0.12 GB"},
        {994'999'999, "0.99 GB"},
        {995'000'000, "1 GB"},
        {999'949'999, "1 GB"},
        {999'950'000, "1 GB"},
        {1'000'000'000, "1 GB"},
        {499'963'174'912, "499.96 GB"},
        {999'994'999'999, "999.99 GB"},
        {999'995'000'000, "1 TB"},
        {1'000'000'000'000, "1 TB"},
        {999'994'999'999'999, "999.99 TB"},
        {999'995'000'000'000, "1000 TB"},
        {1'000'000'000'000'000, "1000 TB"},
        {1'000'000'000'000'000'000, "1000000 TB"},
        {mostBytes, "9223372.04 TB"},
        {-1'500'000'000, "-1.5 GB"},
        {-999'995'000'000, "-1 TB"},
        {smallest, "-9223372.04 TB"},
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(byteCountText(bytes, ByteUnits::gigabytesAndTerabytes), text) << bytes;
}

TEST_F(TextFormat, APercentageHasUpToOneFractionDigit) {
    const struct {
        double fraction;
        const char* text;
    } cases[] = {
        {0, "0%"},         {-0.0, "0%"},      {0.5, "50%"},      {1, "100%"},        {0.123, "12.3%"},
        {0.1234, "12.3%"}, {0.1238, "12.4%"}, {0.0004, "0%"},    {0.0006, "0.1%"},   {0.9994, "99.9%"},
        {0.9996, "100%"},  {0.0625, "6.2%"},  {0.1875, "18.8%"}, {10, "1000%"},      {1234.5, "123450%"},
        {-0.5, "-50%"},    {-0.001, "-0.1%"}, {-0.0001, "0%"},   {-0.0625, "-6.2%"}, {1e9, "100000000000%"},
    };
    for (const auto& [fraction, text] : cases)
        EXPECT_EQ(percentText(fraction), text) << fraction;
}

TEST_F(TextFormat, NanAndInfinityHaveNoPercentage) {
    for (const double fraction : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity(), std::nan("")})
        EXPECT_EQ(percentText(fraction), std::nullopt);
}

TEST_F(TextFormat, TheTimeOfDayHasNoSeconds) {
    const struct {
        std::int64_t seconds;
        const char* text;
    } cases[] = {
        {morning, "08:15"}, {morning + 17, "08:15"}, {morning + 18, "08:16"}, {morning + 12 * 3600, "20:15"},
        {0, "00:00"},       {12 * 3600, "12:00"},    {86'399, "23:59"},       {-1, "23:59"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(shortTimeText(momentAt(seconds)), text) << seconds;
    EXPECT_EQ(shortTimeText(momentAt(0, -1)), "23:59");
    EXPECT_EQ(shortTimeText(momentAt(59, 999'999'999)), "00:00");
}

TEST_F(TextFormat, DateAndTimeGoToTheSecond) {
    EXPECT_EQ(dateTimeText(momentAt(morning)), "Sat Jan 31 08:15:42 2026");
    EXPECT_EQ(dateTimeText(momentAt(morning, 999'999'999)), "Sat Jan 31 08:15:42 2026");
    EXPECT_EQ(dateTimeText(momentAt(0, -1)), "Wed Dec 31 23:59:59 1969");
}

TEST_F(TextFormat, LocalTimesAreThoseOfTheUsersTimeZone) {
    const struct {
        const char* zone;
        const char* time;
        const char* dateAndTime;
    } cases[] = {
        {"UTC0", "08:15", "Sat Jan 31 08:15:42 2026"},
        {"HERE-5:30", "13:45", "Sat Jan 31 13:45:42 2026"},
        {"THERE+9", "23:15", "Fri Jan 30 23:15:42 2026"},
        {"EST5EDT,M3.2.0,M11.1.0", "03:15", "Sat Jan 31 03:15:42 2026"},
    };
    for (const auto& [zone, time, dateAndTime] : cases) {
        const ScopedEnvironment there("TZ", zone);
        EXPECT_EQ(shortTimeText(momentAt(morning)), time) << zone;
        EXPECT_EQ(dateTimeText(momentAt(morning)), dateAndTime) << zone;
    }
}

TEST_F(TextFormat, IsoTimesAreUtcWhateverTheTimeZone) {
    const struct {
        SystemTime time;
        const char* text;
    } cases[] = {
        {momentAt(morning), "2026-01-31T08:15:42Z"},     {momentAt(morning, 999'999'999), "2026-01-31T08:15:42Z"},
        {momentAt(0), "1970-01-01T00:00:00Z"},           {momentAt(0, -1), "1969-12-31T23:59:59Z"},
        {momentAt(951'782'399), "2000-02-28T23:59:59Z"}, {momentAt(951'782'400), "2000-02-29T00:00:00Z"},
        {SystemTime::min(), "1677-09-21T00:12:43Z"},     {SystemTime::max(), "2262-04-11T23:47:16Z"},
    };
    for (const char* zone : {"UTC0", "HERE-5:30", "THERE+9"}) {
        const ScopedEnvironment there("TZ", zone);
        for (const auto& [time, text] : cases)
            EXPECT_EQ(iso8601Text(time), text) << zone;
    }
}

TEST_F(TextFormat, AnUnknownLocaleIsTreatedAsTheCLocale) {
    const ScopedEnvironment unknown("LC_ALL", "xx_YY.UTF-8");
    EXPECT_EQ(byteCountText(1'500'000), "1.5 MB");
    EXPECT_EQ(percentText(0.123), "12.3%");
    EXPECT_EQ(shortTimeText(momentAt(morning)), "08:15");
    EXPECT_EQ(dateTimeText(momentAt(morning)), "Sat Jan 31 08:15:42 2026");
    EXPECT_EQ(iso8601Text(momentAt(morning)), "2026-01-31T08:15:42Z");
}

TEST_F(TextFormatOfLocale, WithADecimalCommaAndAClockOfTwentyFourHours) {
    if (!use("de_DE"))
        GTEST_SKIP() << cannotCompile;
    EXPECT_EQ(byteCountText(1'500'000), "1,5 MB");
    EXPECT_EQ(byteCountText(-1'234'567'890'123), "-1,23 TB");
    EXPECT_EQ(byteCountText(1'500'000'000, ByteUnits::gigabytesAndTerabytes), "1,5 GB");
    EXPECT_EQ(byteCountText(1'000'000), "1 MB");
    EXPECT_EQ(percentText(0.123), "12,3\u00a0%");
    EXPECT_EQ(percentText(0.12), "12\u00a0%");
    EXPECT_EQ(shortTimeText(momentAt(morning)), "08:15");
    EXPECT_EQ(shortTimeText(momentAt(morning + 12 * 3600)), "20:15");
    const std::string dateAndTime = dateTimeText(momentAt(morning));
    EXPECT_TRUE(dateAndTime.starts_with("Sa")) << dateAndTime;
    EXPECT_NE(dateAndTime.find("08:15:42"), dateAndTime.npos) << dateAndTime;
    EXPECT_EQ(iso8601Text(momentAt(morning)), "2026-01-31T08:15:42Z");
}

TEST_F(TextFormatOfLocale, APercentageHasItsSignWhereTheLanguageWritesIt) {
    if (!use("de_DE"))
        GTEST_SKIP() << cannotCompile;
    const struct {
        const char* locale;
        const char* text;
    } cases[] = {
        {"fr_FR", "47,3\u00a0%"}, {"fr_CH", "47,3%"}, {"de_AT", "47,3\u00a0%"}, {"de_CH", "47,3%"},
        {"es_ES", "47,3\u00a0%"}, {"es_AR", "47,3%"}, {"ru_RU", "47,3\u00a0%"}, {"it_IT", "47,3%"},
        {"en_DK", "47,3\u00a0%"}, {"tr_TR", "%47,3"}, {"eu_ES", "%\u00a047,3"}, {"ca_ES@euro", "47,3\u00a0%"},
    };
    for (const auto& [name, text] : cases) { // its own figures do not matter, and take seconds to compile
        std::filesystem::create_directory_symlink(folder / "de_DE.UTF-8", folder / name);
        locale.emplace("LC_ALL", name);
        EXPECT_EQ(percentText(0.473), text) << name;
    }
}

TEST_F(TextFormatOfLocale, WithADecimalPointAndAClockOfTwelveHours) {
    if (!use("en_US"))
        GTEST_SKIP() << cannotCompile;
    EXPECT_EQ(byteCountText(1'500'000), "1.5 MB");
    EXPECT_EQ(percentText(0.123), "12.3%");
    const struct {
        std::int64_t seconds;
        const char* text;
    } cases[] = {
        {morning, "8:15 AM"}, {morning + 12 * 3600, "8:15 PM"}, {0, "12:00 AM"}, {12 * 3600, "12:00 PM"},
        {-60, "11:59 PM"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(shortTimeText(momentAt(seconds)), text) << seconds;
    EXPECT_EQ(iso8601Text(momentAt(morning)), "2026-01-31T08:15:42Z");
}

TEST_F(TextFormatOfLocale, EachCategoryFollowsItsOwnVariable) {
    if (!use("de_DE"))
        GTEST_SKIP() << cannotCompile;
    const ScopedEnvironment all("LC_ALL", nullptr);
    const ScopedEnvironment language("LANG", "xx_YY.UTF-8"); // unknown
    const ScopedEnvironment numbers("LC_NUMERIC", "de_DE.UTF-8");
    EXPECT_EQ(byteCountText(1'500'000), "1,5 MB");
    EXPECT_EQ(dateTimeText(momentAt(morning)), "Sat Jan 31 08:15:42 2026");
    const ScopedEnvironment times("LC_TIME", "de_DE.UTF-8");
    const ScopedEnvironment otherNumbers("LC_NUMERIC", "xx_YY.UTF-8");
    EXPECT_EQ(byteCountText(1'500'000), "1.5 MB");
    EXPECT_TRUE(dateTimeText(momentAt(morning)).starts_with("Sa 31")) << dateTimeText(momentAt(morning));
}

} // namespace vantry
