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

// XML 1.0 allows no control characters except tab and line breaks.
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

Result<std::map<std::string, std::string>> propertyListTexts(std::string_view bytes,
                                                             std::span<const std::string> keys) {
    if (bytes.size() > largestPropertyList)
        return std::unexpected(Error{ErrorKind::invalid, "The property list is too large."});
    plist_t read = nullptr;
    const auto parse = bytes.starts_with("bplist00") ? plist_from_bin : plist_from_xml;
    parse(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &read);
    const Node list(read);
    if (!list || plist_get_node_type(list.get()) != PLIST_DICT)
        return std::unexpected(Error{ErrorKind::invalid, "This is not a property list that can be read."});
    std::map<std::string, std::string> texts;
    for (const auto& key : keys) {
        const plist_t value = plist_dict_get_item(list.get(), key.c_str());
        if (!value || plist_get_node_type(value) != PLIST_STRING)
            continue;
        std::uint64_t length = 0;
        const char* text = plist_get_string_ptr(value, &length);
        if (text && length <= longestPropertyListText && isUtf8({text, length}))
            texts.emplace(key, std::string(text, length));
    }
    return texts;
}

} // namespace vantry
