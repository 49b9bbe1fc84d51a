#include "platform/linux/TrashInfoFile.h"

#include "base/Utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantry {

namespace {

constexpr std::size_t limit = 245;

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

std::tm date() {
    std::tm date = {};
    date.tm_year = 126;
    date.tm_mon = 0;
    date.tm_mday = 2;
    date.tm_hour = 3;
    date.tm_min = 4;
    date.tm_sec = 5;
    return date;
}

} // namespace

TEST(TrashInfo, TellsTheOriginAndTheDate) {
    EXPECT_EQ(trashInfoText("/var/log/a-b_c.1~", date()),
              "[Trash Info]\nPath=/var/log/a-b_c.1~\nDeletionDate=2026-01-02T03:04:05\n");
}

TEST(TrashInfo, EncodesEachByteThatIsNotPlain) {
    struct Case {
        std::string origin;
        std::string path;
    };
    const std::vector<Case> cases{
        {"/a b", "/a%20b"},
        {"/100%", "/100%25"},
        {"/line\nPath=/other", "/line%0APath%3D/other"},
        {"/tab\t\r\x7f", "/tab%09%0D%7F"},
        {"/é", "/%C3%A9"},
        {"/\xff\xfe\x80", "/%FF%FE%80"},
        {"/[x];#?&+'\"", "/%5Bx%5D%3B%23%3F%26%2B%27%22"},
    };
    for (const auto& [origin, path] : cases)
        EXPECT_EQ(trashInfoText(origin, date()), "[Trash Info]\nPath=" + path + "\nDeletionDate=2026-01-02T03:04:05\n");
}

TEST(TrashName, IsTheNameItselfOrHasATagBeforeTheExtension) {
    struct Case {
        std::string name;
        std::string tag;
        std::string expected;
    };
    const std::vector<Case> cases{
        {"a.log", "", "a.log"},
        {"a.log", "2", "a.2.log"},
        {"a", "2", "a.2"},
        {".hidden", "2", ".hidden.2"},
        {".hidden.log", "2", ".hidden.2.log"},
        {"a.tar.gz", "2", "a.tar.2.gz"},
        {"a.", "2", "a.2."},
        {"a b\nc.log", "7", "a b\nc.7.log"},
        {"\xff.\xfe", "2", "\xff.2.\xfe"},
        {"a." + std::string(31, 'x'), "2", "a.2." + std::string(31, 'x')},
        {"a." + std::string(32, 'x'), "2", "a." + std::string(32, 'x') + ".2"},
        {"one. " + std::string(60, 'x'), "2", "one. " + std::string(60, 'x') + ".2"}, // no extension, a sentence
    };
    for (const auto& [name, tag, expected] : cases)
        EXPECT_EQ(trashName(name, tag, limit), expected);
}

TEST(TrashName, FitsAndKeepsTheExtension) {
    struct Case {
        std::string name;
        std::string tag;
        std::string expected;
    };
    const std::vector<Case> cases{
        {std::string(255, 'x'), "", std::string(245, 'x')},
        {std::string(245, 'x'), "", std::string(245, 'x')},
        {std::string(246, 'x'), "", std::string(245, 'x')},
        {std::string(245, 'x'), "2", std::string(243, 'x') + ".2"},
        {std::string(251, 'x') + ".log", "", std::string(241, 'x') + ".log"},
        {std::string(251, 'x') + ".log", "12", std::string(238, 'x') + ".12.log"},
        {repeated("é", 127), "", repeated("é", 122)},             // 244 bytes: half a character is none
        {"x" + repeated("é", 127), "", "x" + repeated("é", 122)}, // 245
        {repeated("🗑", 63), "2", repeated("🗑", 60) + ".2"}, // 242
        {repeated("\xff", 255), "", repeated("\xff", 245)},       // no text: bytes
        {repeated("\xc3\xa9", 126) + "\xff", "", repeated("\xc3\xa9", 122) + "\xc3"},
    };
    for (const auto& [name, tag, expected] : cases) {
        const std::string actual = trashName(name, tag, limit);
        EXPECT_EQ(actual, expected);
        EXPECT_LE(actual.size(), limit);
        EXPECT_TRUE(isUtf8(actual) || !isUtf8(name));
    }
}

} // namespace vantry
