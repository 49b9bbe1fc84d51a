#include "platform/PropertyList.h"

#include "base/Utf8.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <plist/plist.h>

namespace vantry {

namespace {

struct NodeDeleter {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

// XML 1.0 has no control characters but tab and the line breaks.
bool xmlCanHold(const std::string& text) {
    return isUtf8(text) && std::ranges::none_of(text, [](char character) {
               return static_cast<unsigned char>(character) < 0x20 && character != '\t' && character != '\n' &&
                      character != '\r';
           });
}

bool xmlCanHold(const PropertyList& list) {
    if (const auto* text = std::get_if<std::string>(&list.value))
        return xmlCanHold(*text);
    if (const auto* array = std::get_if<PropertyList::Array>(&list.value))
        return std::ranges::all_of(*array, [](const auto& element) { return xmlCanHold(element); });
    if (const auto* dictionary = std::get_if<PropertyList::Dictionary>(&list.value))
        return std::ranges::all_of(*dictionary,
                                   [](const auto& entry) { return xmlCanHold(entry.key) && xmlCanHold(entry.value); });
    return true;
}

Node nodeOf(const PropertyList& list) {
    if (const auto* boolean = std::get_if<bool>(&list.value))
        return Node(plist_new_bool(*boolean ? 1 : 0));
    if (const auto* text = std::get_if<std::string>(&list.value))
        return Node(plist_new_string(text->c_str()));
    if (const auto* array = std::get_if<PropertyList::Array>(&list.value)) {
        Node node(plist_new_array());
        for (const auto& element : *array)
            plist_array_append_item(node.get(), nodeOf(element).release());
        return node;
    }
    Node node(plist_new_dict());
    for (const auto& [key, entry] : std::get<PropertyList::Dictionary>(list.value))
        plist_dict_set_item(node.get(), key.c_str(), nodeOf(entry).release());
    return node;
}

} // namespace

Result<std::string> xmlPropertyList(const PropertyList& list) {
    if (!xmlCanHold(list))
        return std::unexpected(Error{ErrorKind::invalid, "A property list cannot hold this text."});
    const Node node = nodeOf(list);
    char* text = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node.get(), &text, &length);
    if (!text)
        return std::unexpected(Error{ErrorKind::system, "The property list could not be written."});
    std::string xml(text, length);
    plist_to_xml_free(text);
    return xml;
}

} // namespace vantry
