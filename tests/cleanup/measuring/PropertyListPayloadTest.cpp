#include "cleanup/measuring/PropertyListPayload.h"

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

TEST(PropertyListPayload, IsReadBackAsItWasWritten) {
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
    payload = {Texts{{"a", ""}}};
    const auto around = encoded(payload).size();
    payload.texts->at("a") = std::string(longestPropertyListLine - around, 'x');
    EXPECT_EQ(encoded(payload).size(), longestPropertyListLine);
    payload.texts->at("a") += 'x';
    EXPECT_EQ(encoded(payload), "null\n");
}

TEST(PropertyListPayload, IsNotReadFromAnythingElse) {
    std::vector<std::string> lines{"", " ", "nul", "null ", " null", "Null", "true", "0", "\"a\"", "[]", "[{}]", "{",
                                   "}", "{}}", "{}{}", "{}\0"s, "\xef\xbb\xbfnull", "{\"a\":\"x\"}garbage",
                                   "garbage{\"a\":\"x\"}", R"({"a":"x"}null)", R"({"a"})", R"({"a":"x",})",
                                   R"({"a":"x" "b":"y"})", R"({'a':'x'})",
                                   // keys that were not asked for, or are there twice
                                   R"({"c":"x"})", R"({"":"x"})", R"({"a":"x","c":"y"})", R"({"a":"x","a":"y"})",
                                   R"({"a":"x","a":"x"})", "{" + std::string(longestPropertyListLine - 2, ' ') + "}",
                                   std::string(1'000'000, '['), std::string(1'000'000, '{')};
    for (const std::string& value :
         {"null"s, "true"s, "1"s, "-1"s, "1.5"s, R"(["x"])"s, R"({"b":"x"})"s, "{}"s, R"("\u0000")"s, R"("\ud800")"s,
          R"("\udc00")"s, R"("\x")"s, "\"x\0\""s, "\"\xff\""s, "\"\xed\xa0\x80\""s, "\"\n\""s,
          "\"" + std::string(longestPropertyListText + 1, 'x') + "\""})
        lines.push_back(R"({"a":)" + value + "}");
    for (const auto& line : lines)
        EXPECT_EQ(decodedPropertyList(line, keys), std::nullopt) << line.substr(0, 100);
    EXPECT_NE(decodedPropertyList(R"( { "b" : "x" } )", keys), std::nullopt);
    EXPECT_EQ(decodedPropertyList(R"({"a":"x"})", {}), std::nullopt);
}

} // namespace vantry
