#include "base/Utf8.h"

#include <gtest/gtest.h>
#include <string_view>

namespace vantry {
namespace {

using namespace std::string_view_literals;

TEST(Utf8, WellFormedTextIsAccepted) {
    for (const auto text :
         {""sv, "plain"sv, "with\0nul"sv, "é"sv, "…’"sv, "\xf0\x9f\x8d\x8e"sv, "\xed\x9f\xbf"sv, "\xee\x80\x80"sv,
          "\xf4\x8f\xbf\xbf"sv, "\x7f"sv, "\xc2\x80"sv, "\xe0\xa0\x80"sv, "\xf0\x90\x80\x80"sv})
        EXPECT_TRUE(isUtf8(text)) << testing::PrintToString(text);
}

TEST(Utf8, MalformedTextIsRefused) {
    for (const auto text : {"\x80"sv, "\xff"sv, "\xc3"sv, "a\xc3"sv, "\xc3("sv, "\xe2\x82"sv, "\xe2(\xa1"sv,
                            "\xf0\x9f\x8d"sv, "\xf8\x88\x80\x80\x80"sv, "ok\xfe"sv})
        EXPECT_FALSE(isUtf8(text)) << testing::PrintToString(text);
}

TEST(Utf8, OverlongFormsSurrogatesAndTooLargeCodePointsAreRefused) {
    for (const auto text : {"\xc0\x80"sv, "\xc1\xbf"sv, "\xe0\x9f\xbf"sv, "\xf0\x8f\xbf\xbf"sv, "\xed\xa0\x80"sv,
                            "\xed\xbf\xbf"sv, "\xf4\x90\x80\x80"sv, "\xf7\xbf\xbf\xbf"sv})
        EXPECT_FALSE(isUtf8(text)) << testing::PrintToString(text);
}

TEST(Utf8, MalformedBytesAreReplacedOneByOne) {
    EXPECT_EQ(withReplacementCharacters(""), "");
    EXPECT_EQ(withReplacementCharacters("caché …"), "caché …");
    EXPECT_EQ(withReplacementCharacters("a\xff"
                                        "b"),
              "a\xef\xbf\xbd"
              "b");
    EXPECT_EQ(withReplacementCharacters("\xe2\x82"), "\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(withReplacementCharacters("\xc3é"), "\xef\xbf\xbdé");
    EXPECT_EQ(withReplacementCharacters("\xed\xa0\x80"
                                        "z"),
              "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbdz");
}

TEST(Utf8, CharactersAreCountedNotBytes) {
    EXPECT_EQ(characterCount(""), 0U);
    EXPECT_EQ(characterCount("abc"), 3U);
    EXPECT_EQ(characterCount("é€\xf0\x9f\x98\x80"), 3U);
    EXPECT_EQ(characterCount("\xff\xe2\x82z"), 4U) << "what is malformed counts byte by byte";
}

} // namespace
} // namespace vantry
