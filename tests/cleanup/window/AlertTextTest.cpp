#include "cleanup/window/AlertText.h"
#include "base/Utf8.h"
#include "cleanup/window/MoveTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vantry {

namespace {

/// All characters are equally wide.
double characters(const std::string& text) {
    return static_cast<double>(
        std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xc0) != 0x80; }));
}

std::string repeated(std::string_view part, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += part;
    return text;
}

const std::string sentence = "Scan again before moving anything. No items were changed.";

/// Fits `lines` into an alert that is 20 characters wide.
std::string fitted(const std::string& lines) {
    const std::string text = fittedInformativeText({"", lines + "\n\n" + sentence, {"OK"}}, 20, characters);
    EXPECT_TRUE(text.ends_with("\n\n" + sentence)) << text;
    return text.substr(0, text.size() - sentence.size() - 2);
}

TEST(AlertText, LinesThatFitAreLeftAsTheyAre) {
    for (const std::string& lines :
         std::vector<std::string>{"", "old.log: it changed", "one two three four five six: it is not here any more",
                                  "exactly-20-characte: a\nold.log: b", "a  b\n\nc", "a " + std::string(20, 'x'),
                                  repeated("old.log: b\n", 11) + "new.log: b"})
        EXPECT_EQ(fitted(lines), lines);
}

TEST(AlertText, AWordThatIsTooLongLosesItsMiddle) {
    EXPECT_EQ(fitted("a-name-without-a-space.log: it changed"), "a-name-wit…pace.log: it changed");
    EXPECT_EQ(fitted("old.log: b\n" + repeated("a", 30) + ": b"), "old.log: b\naaaaaaaaaa…aaaaaaaa: b");
}

TEST(AlertText, LinesThatAreTooLongForAllToBeShownLoseTheirMiddle) {
    const std::string name = repeated("one two ", 40) + ": it changed";
    for (const auto& [count, length] : {std::pair(1U, 240), {2U, 120}, {4U, 60}, {5U, 40}, {12U, 20}}) {
        std::string lines = name;
        for (std::size_t i = 1; i < count; ++i)
            lines += "\n" + name;
        const std::string shown = fitted(lines);
        EXPECT_EQ(std::ranges::count(shown, '\n'), count - 1);
        const std::string line = shown.substr(0, shown.find('\n'));
        EXPECT_EQ(characters(line), length);
        EXPECT_TRUE(line.starts_with("one two"));
        EXPECT_TRUE(line.ends_with(" changed"));
    }
}

TEST(AlertText, OfVeryManyLinesTheFirstAreShown) {
    const std::string shown = fitted(repeated("old.log: it changed\n", 30) + "new.log: it changed");
    EXPECT_EQ(shown, repeated("old.log: it changed\n", 11) + "…");
}

TEST(AlertText, APathIsElidedInItsLongPartsOnly) {
    EXPECT_EQ(fitted("a: it is at /home/somebody/.local/share/Trash/files/a"),
              "a: it is at /home/somebody/.local/share/Trash/files/a");
    EXPECT_EQ(fitted("a: it is at /home/somebody/" + repeated("x", 40) + "/a"),
              "a: it is at /home/somebody/xxxxxxxxxx…xxxxxxxx/a");
}

TEST(AlertText, ALineBreaksAfterASlashOnlyBeforeALetter) {
    for (const char next : std::string_view("amzAMZ")) {
        const std::string path = std::string(12, 'x') + '/' + next + std::string(12, 'x');
        EXPECT_EQ(fitted(path), path);
    }
    for (const char next : std::string_view("@[`{_1.-")) {
        const std::string path = std::string(12, 'x') + '/' + next + std::string(12, 'x');
        EXPECT_NE(fitted(path), path) << next;
    }
}

TEST(AlertText, WhereNothingFitsTheEllipsisAloneIsShown) {
    EXPECT_EQ(fittedInformativeText({"", "aaa\n\n" + sentence, {"OK"}}, 0, characters), "…\n\n" + sentence);
}

TEST(AlertText, NoWordIsTooLongWhereTheMiddleOfALineWasTaken) {
    const std::string line = fitted(repeated("a", 19) + " " + repeated("b", 300) + " " + repeated("c", 19));
    for (std::size_t begin = 0; begin < line.size();) {
        const auto end = std::min(line.find(' ', begin), line.size());
        EXPECT_LE(characters(line.substr(begin, end - begin)), 20) << line;
        begin = end + 1;
    }
}

TEST(AlertText, CharactersStayWhole) {
    for (const std::string character : {"é", "日", "🗑"})
        for (std::size_t count = 18; count < 30; ++count) {
            const std::string name = fitted(repeated(character, count));
            EXPECT_TRUE(isUtf8(name));
            EXPECT_LE(characters(name), 20);
            EXPECT_EQ(count <= 20, name.find("…") == std::string::npos);
            EXPECT_GE(characters(name), std::min<double>(static_cast<double>(count), 19));
        }
    EXPECT_EQ(fitted(repeated("é", 30)), repeated("é", 10) + "…" + repeated("é", 9));
}

TEST(AlertText, ATextWithoutFilesIsLeftAsItIs) {
    for (const AlertContent& alert : {protectedSelectionAlert(), confirmationAlert({})})
        EXPECT_EQ(fittedInformativeText(alert, 1, characters), alert.informativeText);
}

} // namespace

} // namespace vantry
