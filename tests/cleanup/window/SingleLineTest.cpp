#include "cleanup/window/SingleLine.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

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
