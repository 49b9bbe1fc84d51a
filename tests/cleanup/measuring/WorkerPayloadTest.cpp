#include "cleanup/measuring/WorkerPayload.h"

#include "base/Base64.h"
#include "base/Utf8.h"
#include "tests/support/CommaLocale.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

namespace {

using namespace std::string_literals;

constexpr auto largest = std::numeric_limits<std::int64_t>::max();

std::string repeated(const std::string& text, std::size_t count) {
    std::string whole;
    for (std::size_t i = 0; i < count; ++i)
        whole += text;
    return whole;
}

} // namespace

TEST(DirectoryMetricsPayload, IsWrittenByteForByte) {
    const struct {
        DirectoryMetricsPayload payload;
        std::string text;
    } cases[] = {
        {{}, R"({"size":0,"complete":false})"},
        {{.size = 4096, .complete = true}, R"({"size":4096,"complete":true})"},
        {{.size = 4096, .newestModificationTime = 1'700'000'000.25, .complete = true},
         R"({"size":4096,"newestModificationTime":1700000000.25,"complete":true})"},
        {{.size = largest, .newestModificationTime = -1.5, .complete = false},
         R"({"size":9223372036854775807,"newestModificationTime":-1.5,"complete":false})"},
    };
    for (const auto& [payload, text] : cases) {
        EXPECT_EQ(encoded(payload), text);
        EXPECT_EQ(decodedDirectoryMetrics(text), payload) << text;
    }
}

TEST(DirectoryMetricsPayload, KeepsEveryTimeExactly) {
    for (const double time : {0.0, -0.5, 1e-9, 0.1, 1'700'000'000.0, 1'700'000'000.123'456'7, -2'208'988'800.0,
                              9'223'372'035.0, -9'223'372'035.0}) {
        const DirectoryMetricsPayload payload{.size = 1, .newestModificationTime = time, .complete = true};
        EXPECT_EQ(decodedDirectoryMetrics(encoded(payload)), payload) << encoded(payload);
    }
}

TEST(DirectoryMetricsPayload, IsReadInAnyLayoutAndOrder) {
    const DirectoryMetricsPayload payload{.size = 5, .newestModificationTime = 12, .complete = true};
    for (const char* text : {R"({"size":5,"newestModificationTime":12,"complete":true})",
                             R"({"complete":true,"newestModificationTime":12.0,"size":5})",
                             "  {\n\t\"newestModificationTime\" : 1.2e1 ,\r\n \"complete\":true, \"size\":5 }\n ",
                             R"({"\u0073ize":5,"newestModificationTime":12,"complete":true})"})
        EXPECT_EQ(decodedDirectoryMetrics(text), payload) << text;
}

TEST(DirectoryMetricsPayload, IsNotReadFromAnythingElse) {
    std::vector<std::string> texts{
        "", " ", "null", "true", "5", "\"size\"", "[]", R"([{"size":5,"complete":true}])", "{}",
        // keys that are missing, unknown or there twice
        R"({"size":5})", R"({"complete":true})", R"({"size":5,"newestModificationTime":1})",
        R"({"size":5,"complete":true,"more":1})", R"({"size":5,"complete":true,"":1})", R"({"Size":5,"complete":true})",
        R"({"size\u0000":5,"complete":true})", R"({"size":5,"size":5,"complete":true})",
        R"({"size":5,"complete":true,"complete":true})",
        R"({"size":5,"newestModificationTime":1,"newestModificationTime":1,"complete":true})",
        R"({"names":[],"complete":true})", R"({"size":5,"names":[],"complete":true})",
        // punctuation that JSON does not have
        R"({'size':5,"complete":true})", R"({size:5,"complete":true})", R"({"size":5,"complete":true,})",
        R"({"size":5,/* */"complete":true})", R"({"size":5;"complete":true})",
        // text that is cut off, or goes on
        R"({"size":5,"complete":true)", R"({"size":5,"complete":)", R"({"size)", R"({"size":5,"complete":true}})",
        R"({"size":5,"complete":true}{"size":5,"complete":true})", R"({"size":5,"complete":true} garbage)",
        R"({"size":5,"complete":true},)", "{\"size\":5,\"complete\":true}\0"s,
        "{\"size\":5,\"complete\":true}\0garbage"s, "{\"size\":5,\0\"complete\":true}"s,
        "\0{\"size\":5,\"complete\":true}"s, "{\"size\":5,\"complete\":true}\xff",
        "\xfe\xff{\"size\":5,\"complete\":true}"};
    for (const std::string& size :
         {R"("5")"s, "null"s, "true"s, "[5]"s, R"({"size":5})"s, "{}"s, "5.0"s, "5.5"s, "5e0"s, "-1"s,
          "-9223372036854775808"s, "9223372036854775808"s, "18446744073709551615"s, "18446744073709551616"s,
          "1" + std::string(400, '0'), "05"s, "+5"s, "0x5"s})
        texts.push_back(R"({"size":)" + size + R"(,"complete":true})");
    for (const char* complete : {"1", R"("true")", "null", "[true]", "{}", "True", "tru"})
        texts.push_back(std::string(R"({"size":5,"complete":)") + complete + "}");
    for (const char* time : {R"("1")", "null", "true", "[]", "9223372036", "-9223372036.5", "9223372036854775807",
                             "1e308", "1e309", "-1e999999999", "NaN", "nan", "Infinity", "-inf", "1,5", ".5", "5."})
        texts.push_back(std::string(R"({"size":5,"newestModificationTime":)") + time + R"(,"complete":true})");
    for (const auto& text : texts)
        EXPECT_EQ(decodedDirectoryMetrics(text), std::nullopt) << text;
}

TEST(DirectoryMetricsPayload, IsTheSameInALocaleWithADecimalComma) {
    const CommaLocale locale;
    if (!locale.isSet())
        GTEST_SKIP() << "there is no locale with a decimal comma";
    const DirectoryMetricsPayload payload{.size = 1'234'567, .newestModificationTime = 1234.5, .complete = true};
    const std::string text = R"({"size":1234567,"newestModificationTime":1234.5,"complete":true})";
    EXPECT_EQ(encoded(payload), text);
    EXPECT_EQ(decodedDirectoryMetrics(text), payload);
    EXPECT_EQ(decodedDirectoryMetrics(R"({"size":1,"newestModificationTime":1234,5,"complete":true})"), std::nullopt);
}

TEST(ShallowChildrenPayload, IsWrittenByteForByte) {
    const struct {
        ShallowChildrenPayload payload;
        std::string text;
    } cases[] = {
        {{}, R"({"names":[],"complete":false})"},
        {{.names = {}, .complete = true}, R"({"names":[],"complete":true})"},
        {{.names = {"b", "a", "C c"}, .complete = true}, R"({"names":["b","a","C c"],"complete":true})"},
        {{.names = {"Größe", "文件", "🎉"}, .complete = true}, R"({"names":["Größe","文件","🎉"],"complete":true})"},
        {{.names = {"a\"b", "a\\b", "a\nb", "a\tb", "\x01\x1f\x7f", "'", "{", "\r"}, .complete = true},
         "{\"names\":[\"a\\\"b\",\"a\\\\b\",\"a\\nb\",\"a\\tb\",\"\\u0001\\u001f\x7f\",\"'\",\"{\",\"\\r\"],"
         "\"complete\":true}"},
        {{.names = {"\xff\xfe", "caf\xe9"}, .complete = true},
         R"({"names":[],"complete":true,"encodedNames":["//4=","Y2Fm6Q=="]})"},
    };
    for (const auto& [payload, text] : cases) {
        EXPECT_EQ(encoded(payload), text);
        EXPECT_EQ(decodedShallowChildren(text), payload) << text;
    }
}

TEST(ShallowChildrenPayload, PutsNamesThatAreNotUtf8BehindTheOthersInOrder) {
    const ShallowChildrenPayload payload{.names = {"z", "\xff", "a", "\x80z", "\xc0\x80"}, .complete = true};
    EXPECT_EQ(encoded(payload), R"({"names":["z","a"],"complete":true,"encodedNames":["/w==","gHo=","wIA="]})");
    EXPECT_EQ(decodedShallowChildren(encoded(payload)),
              (ShallowChildrenPayload{.names = {"z", "a", "\xff", "\x80z", "\xc0\x80"}, .complete = true}));
}

TEST(ShallowChildrenPayload, KeepsEveryNameThatAFolderCanHold) {
    std::vector<std::string> names = {std::string(255, 'n'),
                                      repeated("ä", 127) + "a",
                                      std::string(255, '\xe4'),
                                      std::string(255, '"'),
                                      std::string(255, '\\'),
                                      std::string(255, '\n'),
                                      "...",
                                      " ",
                                      "-",
                                      "a b",
                                      "\xef\xbb\xbf",
                                      "\xe2\x80\xa8"};
    for (int first = 1; first < 256; ++first)
        for (const int second : {0x61, 0x7f, 0x80, 0x9f, 0xa0, 0xbf, 0xc0, 0xff})
            for (const std::string& end : {""s, "\x80"s, "\xbf\x8f"s})
                if (first != '/')
                    names.push_back(std::string{static_cast<char>(first), static_cast<char>(second)} + end);
    for (const auto& name : names) {
        const ShallowChildrenPayload payload{.names = {name}, .complete = true};
        const std::string text = encoded(payload);
        EXPECT_TRUE(isUtf8(text));
        EXPECT_EQ(text.find("encodedNames") == std::string::npos, isUtf8(name)) << text;
        EXPECT_EQ(decodedShallowChildren(text), payload) << text;
    }
}

TEST(ShallowChildrenPayload, IsReadInAnyLayoutAndOrder) {
    const ShallowChildrenPayload payload{.names = {"a", "b"}, .complete = true};
    for (const char* text : {R"({"names":["a","b"],"complete":true})", R"({"complete":true,"names":["a","b"]})",
                             " { \"names\" : [ \"a\" ,\n\"b\" ] , \"complete\" : true } ",
                             R"({"names":["\u0061","\u0062"],"complete":true})"})
        EXPECT_EQ(decodedShallowChildren(text), payload) << text;
    EXPECT_EQ(decodedShallowChildren(R"({"encodedNames":["/w=="],"complete":true,"names":["\ud83c\udf89\/"]})"),
              std::nullopt);
    EXPECT_EQ(decodedShallowChildren(R"({"encodedNames":["/w=="],"complete":true,"names":["\ud83c\udf89"]})"),
              (ShallowChildrenPayload{.names = {"\xff", "🎉"}, .complete = true}));
}

TEST(ShallowChildrenPayload, IsNotReadFromAnythingElse) {
    std::vector<std::string> texts{
        "", "[]", "{}", R"(["a"])",
        // keys that are missing, unknown or there twice
        R"({"names":[]})", R"({"complete":true})", R"({"encodedNames":["/w=="],"complete":true})",
        R"({"names":[],"complete":true,"more":[]})", R"({"names":[],"names":[],"complete":true})",
        R"({"names":["a"],"names":["b"],"complete":true})", R"({"names":[],"complete":true,"complete":false})",
        R"({"names":[],"complete":true,"encodedNames":["/w=="],"encodedNames":["/w=="]})",
        R"({"size":5,"complete":true})",
        // text that is cut off, or goes on
        R"({"names":["a")", R"({"names":["a"],"complete":true)", R"({"names":["a"],"complete":true}])",
        R"({"names":["a"],"complete":true}x)", "{\"names\":[\"a\"],\"complete\":true}\0"s,
        "{\"names\":[\"a\"],\"complete\":true}\0x"s};
    for (const char* names : {"null", R"("a")", "{}", R"({"a":"b"})", "5", R"(["a",])"})
        texts.push_back(std::string(R"({"names":)") + names + R"(,"complete":true})");
    for (const std::string& name : {"5"s, "5.5"s, "-5"s, "null"s, "true"s, R"(["a"])"s, "[]"s, "{}"s,
                                    // what no folder holds
                                    R"("")"s, R"(".")"s, R"("..")"s, R"("/")"s, R"("a/b")"s, R"("../a")"s,
                                    R"("a\u002fb")"s, R"("a\u0000b")"s, R"("ok",".")"s,
                                    // text that is not valid UTF-8 or not valid JSON
                                    "\"\xff\""s, "\"\xc0\x80\""s, "\"\xed\xa0\x80\""s, "\"a\nb\""s, "\"a\0b\""s,
                                    R"("\ud83c")"s, R"("\q")"s, R"("a)"s, R"("a" "b")"s})
        texts.push_back(R"({"names":[)" + name + R"(],"complete":true})");
    for (const char* complete : {"[]", R"(["true"])", R"("true")", "1", "null"})
        texts.push_back(std::string(R"({"names":[],"complete":)") + complete + "}");
    // Names that no folder holds, that are encoded without need, or in another way.
    for (const std::string& encodedNames :
         {R"([")" + base64Text("\xff/") + R"("])", R"([")" + base64Text("\xff\0"s) + R"("])", R"([""])"s, "[]"s,
          R"(["YQ=="])"s, R"(["/w==","YQ=="])"s, R"(["/w"])"s, R"(["/x=="])"s, R"(["_w=="])"s, R"(["/w==\n"])"s,
          R"("/w==")"s, "[5]"s, "null"s})
        texts.push_back(R"({"names":[],"complete":true,"encodedNames":)" + encodedNames + "}");
    for (const auto& text : texts)
        EXPECT_EQ(decodedShallowChildren(text), std::nullopt) << text;
}

TEST(ChildrenMetricsPayload, HasOneLineForEachChildAndOneForTheWhole) {
    const ChildrenMetricsPayload payload{
        .children = {{"a", {.size = 1, .complete = true}},
                     {"b\n", {.size = 2, .newestModificationTime = 3.5, .complete = true}}},
        .whole = {.size = 4, .complete = false}};
    EXPECT_EQ(encoded(payload), "YQ== {\"size\":1,\"complete\":true}\n"
                                "Ygo= {\"size\":2,\"newestModificationTime\":3.5,\"complete\":true}\n"
                                "{\"size\":4,\"complete\":false}");
    EXPECT_EQ(encoded(ChildrenMetricsPayload{}), R"({"size":0,"complete":false})");
}

TEST(ChildrenMetricsPayload, KeepsEveryNameThatAFolderCanHold) {
    ChildrenMetricsPayload payload{.children = {}, .whole = {.size = 7, .complete = true}};
    for (const std::string& name : {std::string(" "), std::string("\n"), std::string("Größe"), std::string("\xff\xfe"),
                                    std::string(255, 'n'), std::string("...")})
        payload.children[name] = {.size = static_cast<std::int64_t>(name.size()), .complete = true};
    EXPECT_EQ(decodedChildrenMetrics(encoded(payload)), payload);
}

TEST(ChildrenMetricsPayload, IsNotReadFromAnythingElse) {
    const std::string child = R"(YQ== {"size":1,"complete":true})";
    const std::string whole = R"({"size":1,"complete":true})";
    ASSERT_TRUE(decodedChildrenMetrics(child + "\n" + whole));
    const std::string cases[] = {
        "",
        "\n",
        child,
        child + "\n",
        child + whole,
        whole + "\n",
        whole + "\n" + whole,
        child + "\n" + child + "\n" + whole, // one name twice
        child + "\n\n" + whole,
        child + "\n" + whole + "\n",
        "YQ==  {\"size\":1,\"complete\":true}x\n" + whole,
        "YQ={\"size\":1,\"complete\":true}\n" + whole,
        "a {\"size\":1,\"complete\":true}\n" + whole,
        " {\"size\":1,\"complete\":true}\n" + whole,
        "Lg== {\"size\":1,\"complete\":true}\n" + whole, // .
        "Li4= {\"size\":1,\"complete\":true}\n" + whole, // ..
        "YS9i {\"size\":1,\"complete\":true}\n" + whole, // a/b
        "YQBi {\"size\":1,\"complete\":true}\n" + whole, // contains a null byte
        "YQ== {\"size\":-1,\"complete\":true}\n" + whole,
        "YQ== {}\n" + whole,
        child + "\n{}",
    };
    for (const auto& text : cases)
        EXPECT_EQ(decodedChildrenMetrics(text), std::nullopt) << text;
}

TEST(WorkerPayload, DeepNestingIsRejectedWithoutRecursion) {
    constexpr std::size_t depth = 5'000'000;
    for (const std::string& text : {std::string(depth, '['), std::string(depth, '{'),
                                    repeated("{\"names\":[", depth / 10), "{\"names\":" + std::string(depth, '[')}) {
        EXPECT_EQ(decodedDirectoryMetrics(text), std::nullopt);
        EXPECT_EQ(decodedShallowChildren(text), std::nullopt);
    }
}

TEST(WorkerPayload, OfOneKindIsNotReadAsAnother) {
    EXPECT_EQ(decodedShallowChildren(encoded(DirectoryMetricsPayload{.size = 1, .complete = true})), std::nullopt);
    EXPECT_EQ(decodedDirectoryMetrics(encoded(ShallowChildrenPayload{.names = {"a"}, .complete = true})), std::nullopt);
}

TEST(SecondsSince1970, AreConvertedBothWaysWithThePrecisionOfADouble) {
    for (const double seconds : {0.0, 1.5, -1.5, 1'700'000'000.25, 9'223'372'035.0, -9'223'372'035.0}) {
        const auto time = timeFromSecondsSince1970(seconds);
        ASSERT_TRUE(time);
        EXPECT_EQ(secondsSince1970(*time), seconds);
    }
    EXPECT_EQ(secondsSince1970(SystemTime(std::chrono::milliseconds(1'700'000'000'123))), 1'700'000'000.123);
    EXPECT_EQ(timeFromSecondsSince1970(1'700'000'000.25), SystemTime(std::chrono::milliseconds(1'700'000'000'250)));
    EXPECT_EQ(timeFromSecondsSince1970(1e-9), SystemTime(std::chrono::nanoseconds(1)));
    EXPECT_EQ(timeFromSecondsSince1970(-1e-9), SystemTime(std::chrono::nanoseconds(-1)));
}

TEST(SecondsSince1970, OfEveryTimeCanBeReadBack) {
    for (const auto time : {SystemTime::min(), SystemTime::max(), SystemTime::min() + std::chrono::seconds(1),
                            SystemTime::max() - std::chrono::nanoseconds(1)})
        EXPECT_TRUE(timeFromSecondsSince1970(secondsSince1970(time))) << time.time_since_epoch().count();
}

TEST(SecondsSince1970, OutsideTheRangeOfSystemTimeAreRejected) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double seconds : {9'223'372'036.0, -9'223'372'036.0, 9'223'372'037.0, 1e18, -1e300, infinity, -infinity,
                                 std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(timeFromSecondsSince1970(seconds), std::nullopt) << seconds;
}

} // namespace vantry
