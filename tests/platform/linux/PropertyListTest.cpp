#include "platform/PropertyList.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <plist/plist.h>
#include <string>
#include <vector>

namespace vantry {
namespace {

using List = PropertyList;

std::string textAt(plist_t dictionary, const char* key) {
    char* text = nullptr;
    plist_get_string_val(plist_dict_get_item(dictionary, key), &text);
    const std::string result = text ? text : "(none)";
    std::free(text);
    return result;
}

TEST(PropertyList, ItIsXmlThatReadsBackAsWhatWasWritten) {
    const auto xml = xmlPropertyList({List::Dictionary{
        {"Text", {std::string("<a> & \"b\" 'c' é\ttab")}},
        {"Yes", {true}},
        {"No", {false}},
        {"List", {List::Array{{std::string("one")}, {std::string("two")}}}},
    }});
    ASSERT_TRUE(xml) << xml.error().message;
    EXPECT_TRUE(xml->starts_with("<?xml version=\"1.0\""));

    plist_t list = nullptr;
    plist_from_xml(xml->data(), static_cast<std::uint32_t>(xml->size()), &list);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(plist_dict_get_size(list), 4U);
    EXPECT_EQ(textAt(list, "Text"), "<a> & \"b\" 'c' é\ttab");
    std::uint8_t boolean = 7;
    plist_get_bool_val(plist_dict_get_item(list, "Yes"), &boolean);
    EXPECT_EQ(boolean, 1);
    plist_get_bool_val(plist_dict_get_item(list, "No"), &boolean);
    EXPECT_EQ(boolean, 0);
    EXPECT_EQ(plist_array_get_size(plist_dict_get_item(list, "List")), 2U);
    plist_free(list);
}

TEST(PropertyList, ATextThatXmlCannotHoldIsRefusedWhereverItStands) {
    const std::string bad[] = {"\xff",
                               "a\x01"
                               "b",
                               std::string("a\0b", 3), "\x1b[0m"};
    for (const auto& text : bad) {
        for (const List& list : {List{text}, List{List::Array{{text}}}, List{List::Dictionary{{"key", {text}}}},
                                 List{List::Dictionary{{text, {true}}}}}) {
            const auto xml = xmlPropertyList(list);
            ASSERT_FALSE(xml);
            EXPECT_EQ(xml.error().kind, ErrorKind::invalid);
        }
    }
}

std::optional<std::map<std::string, std::string>> textsOf(std::string_view bytes) {
    const std::vector<std::string> keys{"Name", "Größe", "missing", ""};
    const auto texts = propertyListTexts(bytes, keys);
    if (texts)
        return *texts;
    EXPECT_EQ(texts.error().kind, ErrorKind::invalid);
    EXPECT_FALSE(texts.error().message.empty());
    return std::nullopt;
}

/// The values under "Name" and "Größe", which libplist takes over.
std::string listOf(plist_t name, plist_t size, bool isBinary) {
    const std::unique_ptr<void, void (*)(void*)> list(plist_new_dict(), plist_free);
    plist_dict_set_item(list.get(), "Name", name);
    plist_dict_set_item(list.get(), "Größe", size);
    char* text = nullptr;
    std::uint32_t length = 0;
    (isBinary ? plist_to_bin : plist_to_xml)(list.get(), &text, &length);
    std::string bytes(text, length);
    std::free(text);
    return bytes;
}

std::string xmlOf(const std::string& entries) { return "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>"; }

using Texts = std::map<std::string, std::string>;

TEST(PropertyListTexts, AreReadFromBothFormats) {
    for (const bool isBinary : {false, true}) {
        EXPECT_EQ(textsOf(listOf(plist_new_string("<a> & \"b\" é 😀"), plist_new_string(""), isBinary)),
                  (Texts{{"Name", "<a> & \"b\" é 😀"}, {"Größe", ""}}));
        const auto others = {plist_new_bool(1),       plist_new_uint(7), plist_new_real(1.5), plist_new_date(1, 2),
                             plist_new_data("ab", 2), plist_new_array(), plist_new_dict()};
        for (const plist_t other : others)
            EXPECT_EQ(textsOf(listOf(other, plist_new_string("a"), isBinary)), (Texts{{"Größe", "a"}}));
    }
}

TEST(PropertyListTexts, AreReadFromXmlHoweverItIsWritten) {
    for (const char* entries : {
             "<key>Name</key><string>a&lt;b</string>",
             "\r\n\t<key>Name</key> <!-- a --> <string>a&#60;b</string>\n",
             "<key>Name</key><string>a<![CDATA[<]]>b</string>",
             "<key>Name</key><string>a&lt;b</string><key>x</key><dict><key>Name</key><string>c</string></dict>",
         }) {
        for (const char* prolog :
             {"", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                  "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"})
            EXPECT_EQ(textsOf(prolog + xmlOf(entries)), (Texts{{"Name", "a<b"}})) << prolog << entries;
    }
}

TEST(PropertyListTexts, ThatAreTooLongOrNotUnicodeAreLeftOut) {
    const std::string longest(longestPropertyListText, 'a');
    const auto withName = [](const std::string& name) {
        return textsOf(xmlOf("<key>Name</key><string>" + name + "</string><key>Größe</key><string>b</string>"));
    };
    EXPECT_EQ(withName(longest), (Texts{{"Name", longest}, {"Größe", "b"}}));
    EXPECT_EQ(withName(longest + "a"), (Texts{{"Größe", "b"}}));
    EXPECT_EQ(withName("caf\xe9"), (Texts{{"Größe", "b"}}));
}

TEST(PropertyListTexts, AreNotReadFromOtherOrTooLargeFiles) {
    for (const char* bytes : {"", " ", "text", "<plist>", "<plist></plist>", "<plist><array/></plist>",
                              "<plist><string>Name</string></plist>", "{ Name = a; }", "{\"Name\":\"a\"}", "bplist00",
                              "<plist><dict><key>Name</key><string>a"})
        EXPECT_EQ(textsOf(bytes), std::nullopt) << bytes;
    std::string large = xmlOf("<key>Name</key><string>a</string>");
    large.resize(largestPropertyList, ' ');
    EXPECT_EQ(textsOf(large), (Texts{{"Name", "a"}}));
    EXPECT_EQ(textsOf(large + " "), std::nullopt);
}

} // namespace
} // namespace vantry
