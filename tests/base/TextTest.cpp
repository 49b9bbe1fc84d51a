#include "base/Text.h"

#include "base/ByteSum.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace vantry {
namespace {

TEST(CountText, IsPluralExceptForOne) {
    EXPECT_EQ(countText(0, "file"), "0 files");
    EXPECT_EQ(countText(1, "file"), "1 file");
    EXPECT_EQ(countText(2, "low-risk file"), "2 low-risk files");
}

TEST(JoinedTexts, LeavesOutEmptyOnes) {
    EXPECT_EQ(joinedTexts({"", "a", "", "b", "c", ""}), "a · b · c");
    EXPECT_EQ(joinedTexts({"", ""}), "");
}

TEST(AsciiLowercase, ChangesTheLettersOfAsciiAlone) {
    EXPECT_EQ(asciiLowercase("AZaz@[`{09"), "azaz@[`{09");
    EXPECT_EQ(asciiLowercase("ÄÖ\xff"), "ÄÖ\xff");
}

TEST(PercentEncoded, KeepsUnreservedBytesAndSlashes) {
    EXPECT_EQ(percentEncoded("/home/ada/a-b_c.d~e09Zz"), "/home/ada/a-b_c.d~e09Zz");
    EXPECT_EQ(percentEncoded("a b%\xff\né"), "a%20b%25%FF%0A%C3%A9");
    EXPECT_EQ(percentEncoded(std::string("\0", 1)), "%00");
}

TEST(DeceptiveLength, CoversControlAndDirectionCharacters) {
    for (const char* text : {"\x01", "\x1f", "\x7f", "\n"})
        EXPECT_EQ(deceptiveLength(text), 1U);
    EXPECT_EQ(deceptiveLength(std::string_view("\0", 1)), 1U);
    for (const char* text : {"\xc2\x80", "\xc2\x9f", "\xd8\x9c"})
        EXPECT_EQ(deceptiveLength(text), 2U);
    for (const char* text :
         {"\xe2\x80\x8e", "\xe2\x80\x8f", "\xe2\x80\xa8", "\xe2\x80\xae", "\xe2\x81\xa6", "\xe2\x81\xa9"})
        EXPECT_EQ(deceptiveLength(text), 3U);
    for (const char* text : {"", " ", "a", "é", "\xc2\xa0", "\xd8\x9d", "\xe2\x80\x8d", "\xe2\x80\xa7", "\xe2\x80\xaf",
                             "\xe2\x81\xa5", "\xe2\x81\xaa", "\xe2\x80"})
        EXPECT_EQ(deceptiveLength(text), 0U) << text;
    EXPECT_EQ(deceptiveLength("a\n"), 0U) << "only the start of the text is looked at";
}

TEST(AddBytes, ClampsTheSum) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    std::int64_t sum = largest - 5;
    EXPECT_TRUE(addBytes(sum, 5));
    EXPECT_EQ(sum, largest);
    EXPECT_FALSE(addBytes(sum, 1));
    EXPECT_EQ(sum, largest);
}

TEST(SingleLine, ANameCanNeitherBreakTheLineNorTurnIt) {
    using namespace std::string_view_literals;
    struct Case {
        std::string_view name;
        std::string_view line;
    };
    for (const auto& [name, line] : {
             Case{"", ""},
             {"plain name.log", "plain name.log"},
             {"Übung – “zwölf” 日本 🗑", "Übung – “zwölf” 日本 🗑"},
             {"one\ntwo\r\tthree", "one\xef\xbf\xbdtwo\xef\xbf\xbd\xef\xbf\xbdthree"},
             {"null\0byte"sv, "null\xef\xbf\xbd"
                              "byte"},
             {"\x1b[31m\x7f", "\xef\xbf\xbd[31m\xef\xbf\xbd"},
             {"\xc2\x80\xc2\x9f\xc2\xa0", "\xef\xbf\xbd\xef\xbf\xbd\xc2\xa0"},
             {"a\xd8\x9c"
              "b",
              "a\xef\xbf\xbd"
              "b"},
             {"\xe2\x80\x8d\xe2\x80\x8e\xe2\x80\x8f\xe2\x80\x90", "\xe2\x80\x8d\xef\xbf\xbd\xef\xbf\xbd\xe2\x80\x90"},
             {"\xe2\x80\xa7\xe2\x80\xa8\xe2\x80\xae\xe2\x80\xaf", "\xe2\x80\xa7\xef\xbf\xbd\xef\xbf\xbd\xe2\x80\xaf"},
             {"\xe2\x81\xa5\xe2\x81\xa6\xe2\x81\xa9\xe2\x81\xaa", "\xe2\x81\xa5\xef\xbf\xbd\xef\xbf\xbd\xe2\x81\xaa"},
             {"\xff.log", "\xef\xbf\xbd.log"},
             {"\xe2\x80", "\xef\xbf\xbd\xef\xbf\xbd"},
         })
        EXPECT_EQ(singleLine(name), line);
}

} // namespace
} // namespace vantry
