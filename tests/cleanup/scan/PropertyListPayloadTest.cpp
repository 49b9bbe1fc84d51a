#include "cleanup/scan/PropertyListPayload.h"

#include "platform/PropertyList.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace vantry {

namespace {

using namespace std::string_literals;

using Texts = std::map<std::string, std::string>;

const std::vector<std::string> keys{"a", "b", "Größe"};

} // namespace

TEST(PropertyListPayload, IsOneLine) {
    EXPECT_EQ(encoded(PropertyListPayload()), "null\n");
    EXPECT_EQ(encoded(PropertyListPayload{Texts{}}), "{}\n");
    EXPECT_EQ(encoded(PropertyListPayload{Texts{{"b", "x\n\"y\""}, {"a", "é"}}}),
              "{\"a\":\"é\",\"b\":\"x\\n\\\"y\\\"\"}\n");
}

TEST(PropertyListPayload, IsReadAsItIsWritten) {
    for (const PropertyListPayload& payload :
         {PropertyListPayload(), PropertyListPayload{Texts{}}, PropertyListPayload{Texts{{"a", ""}}},
          PropertyListPayload{Texts{{"a", "x\n\r\t\\\"/\x01\x1f\x7f é 😀"}, {"b", "\u2028"}, {"Größe", "y"}}},
          PropertyListPayload{Texts{{"a", std::string(longestPropertyListText, '\n')}}}}) {
        std::string line = encoded(payload);
        ASSERT_TRUE(line.ends_with('\n'));
        line.pop_back();
        const auto read = decodedPropertyList(line, keys);
        ASSERT_TRUE(read.has_value()) << line;
        EXPECT_EQ(*read, payload);
    }
}

TEST(PropertyListPayload, IsNullWhenItsLineWouldBeTooLong) {
    const std::string text(longestPropertyListText, '\x01'); // six characters each
    PropertyListPayload payload{Texts{}};
    for (const char* key : {"a", "b"})
        payload.texts->emplace(key, text);
    EXPECT_GT(encoded(payload).size(), longestPropertyListLine / 2);
    payload.texts->emplace("Größe", text);
    EXPECT_EQ(encoded(payload), "null\n");
}

TEST(PropertyListPayload, IsNothingElse) {
    for (const auto& line : {
             ""s,
             " "s,
             "nul"s,
             "null "s,
             " null"s,
             "Null"s,
             "true"s,
             "0"s,
             "\"a\""s,
             "[]"s,
             "[{}]"s,
             "{"s,
             "}"s,
             "{}}"s,
             "{}{}"s,
             "{}\0"s,
             "{\"a\":\"x\0\"}"s,
             "{\"a\":\"x\"}garbage"s,
             "garbage{\"a\":\"x\"}"s,
             R"({"a":"x"}null)"s,
             R"({"a":null})"s,
             R"({"a":true})"s,
             R"({"a":1})"s,
             R"({"a":-1})"s,
             R"({"a":1.5})"s,
             R"({"a":["x"]})"s,
             R"({"a":{"b":"x"}})"s,
             R"({"a":{}})"s,
             R"({"c":"x"})"s,
             R"({"":"x"})"s,
             R"({"a":"x","c":"y"})"s,
             R"({"a":"x","a":"y"})"s,
             R"({"a":"x","a":"x"})"s,
             R"({"a":"x",})"s,
             R"({"a"})"s,
             R"({"a":"x" "b":"y"})"s,
             R"({'a':'x'})"s,
             R"({"a":"\u0000"})"s,
             R"({"a":"\ud800"})"s,
             R"({"a":"\udc00"})"s,
             R"({"a":"\x"})"s,
             "{\"a\":\"\xff\"}"s,
             "{\"a\":\"\xed\xa0\x80\"}"s,
             "{\"a\":\"\n\"}"s,
             "{\"a\":\"" + std::string(longestPropertyListText + 1, 'x') + "\"}",
             "{" + std::string(longestPropertyListLine, ' ') + "}",
             std::string(1'000'000, '['),
             std::string(1'000'000, '{'),
             "\xef\xbb\xbfnull"s,
         })
        EXPECT_EQ(decodedPropertyList(line, keys), std::nullopt) << line.substr(0, 100);
    EXPECT_NE(decodedPropertyList(R"( { "b" : "x" } )", keys), std::nullopt);
    EXPECT_EQ(decodedPropertyList(R"({"a":"x"})", {}), std::nullopt);
}

} // namespace vantry
