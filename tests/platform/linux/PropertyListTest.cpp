#include "platform/PropertyList.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <plist/plist.h>

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

} // namespace
} // namespace vantry
