#include "base/Base64.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace vantry {

namespace {

using namespace std::string_literals;

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string everyByte() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

} // namespace

TEST(Base64, WritesAndReadsTheExamplesOfItsStandard) {
    const struct {
        std::string bytes;
        std::string text;
    } cases[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
        {"\xff", "/w=="},
        {"\xfb\xff\xbf", "+/+/"},
        {"\0"s, "AA=="},
        {"\0\0\0"s, "AAAA"},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(base64Text(bytes), text);
        EXPECT_EQ(bytesOfBase64(text), bytes) << text;
    }
}

TEST(Base64, RestoresBytesOfEveryValueAndLength) {
    const std::string bytes = everyByte();
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        const std::string piece = bytes.substr(bytes.size() - length);
        const std::string text = base64Text(piece);
        EXPECT_EQ(text.size(), (length + 2) / 3 * 4);
        EXPECT_EQ(bytesOfBase64(text), piece) << length;
    }
}

TEST(Base64, RefusesWhatItWouldNotHaveWritten) {
    const std::string cases[] = {
        "Z",        "Zg",        "Zg=",     "Zg===",         "Zm8",       "Zm9vYg=", // not in groups of four
        "=",        "==",        "====",    "=Zg=",          "Z===",      "Zg=A",    // padding in the wrong place
        "Zg==Zg==", "Zm8=Zm9v",  "A=BC",    "Zm9v====",                              // or before the end
        "Zh==",     "Zv==",      "Zm9=",    "Zm+=",                                  // bits after the last byte
        "Zm-v",     "Zm_v",      "Zm9v\n",  "\nZm9v",        "Zm9v Zm9v", " m9v",    // other alphabets, white space
        "Zm9\0"s,   "\0\0\0\0"s, "Zm9\xff", "\xef\xbb\xbfZ", "Zm.v",
    };
    for (const auto& text : cases)
        EXPECT_EQ(bytesOfBase64(text), std::nullopt) << text;
}

TEST(Base64, ReadsExactlyOneTextForEachPairOfBytes) {
    // Of all texts of two digits and two paddings, those without spare bits; of three and one, the same.
    int read = 0;
    for (const char first : digits)
        for (const char second : digits) {
            const std::string text = {first, second, '=', '='};
            const auto bytes = bytesOfBase64(text);
            if (!bytes)
                continue;
            ++read;
            EXPECT_EQ(bytes->size(), 1U);
            EXPECT_EQ(base64Text(*bytes), text);
        }
    EXPECT_EQ(read, 256);
}

TEST(Base64, RefusesOtherCharacters) {
    for (const char character : everyByte()) {
        const std::string text = {'A', character, 'A', 'A'};
        EXPECT_EQ(bytesOfBase64(text).has_value(), digits.find(character) != std::string_view::npos)
            << static_cast<int>(character);
    }
}

} // namespace vantry
