#include "platform/PropertyList.h"

#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <algorithm>
#include <optional>
#include <utility>

namespace vantry {

namespace {

// XML 1.0 allows no control characters except tab and line breaks; NSPropertyListSerialization would write them.
NSString* xmlText(const std::string& text) {
    const bool holdable = std::ranges::none_of(text, [](char character) {
        return static_cast<unsigned char>(character) < 0x20 && character != '\t' && character != '\n' &&
               character != '\r';
    });
    return holdable ? foundationText(text) : nil;
}

// Nil when a text in it is not valid UTF-8 or cannot be written as XML.
id objectOf(const PropertyList& list) {
    if (const auto* boolean = std::get_if<bool>(&list.value))
        return [NSNumber numberWithBool:*boolean];
    if (const auto* text = std::get_if<std::string>(&list.value))
        return xmlText(*text);
    if (const auto* array = std::get_if<PropertyList::Array>(&list.value)) {
        NSMutableArray<id>* objects = [NSMutableArray arrayWithCapacity:array->size()];
        for (const auto& element : *array) {
            id object = objectOf(element);
            if (!object)
                return nil;
            [objects addObject:object];
        }
        return objects;
    }
    const auto& dictionary = std::get<PropertyList::Dictionary>(list.value);
    NSMutableDictionary<NSString*, id>* objects = [NSMutableDictionary dictionaryWithCapacity:dictionary.size()];
    for (const auto& [key, value] : dictionary) {
        NSString* name = xmlText(key);
        id object = objectOf(value);
        if (!name || !object)
            return nil;
        [objects setObject:object forKey:name];
    }
    return objects;
}

// Absent for what is not a text, too long, not valid Unicode or has a zero.
std::optional<std::string> textOf(id object) {
    if (![object isKindOfClass:[NSString class]])
        return std::nullopt;
    NSString* text = object;
    // Each UTF-16 unit takes at least one byte of UTF-8.
    if (text.length > longestPropertyListText)
        return std::nullopt;
    std::string bytes = textFromFoundation(text);
    const bool isValid = !bytes.empty() || text.length == 0;
    const bool isTold = bytes.size() <= longestPropertyListText && bytes.find('\0') == std::string::npos;
    return isValid && isTold ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace

Result<std::string> xmlPropertyList(const PropertyList& list) {
    @autoreleasepool {
        id object = objectOf(list);
        if (!object)
            return std::unexpected(Error{ErrorKind::invalid, "A property list cannot hold this text."});
        NSError* error = nil;
        NSData* xml = [NSPropertyListSerialization dataWithPropertyList:object
                                                                 format:NSPropertyListXMLFormat_v1_0
                                                                options:0
                                                                  error:&error];
        if (!xml)
            return std::unexpected(errorFromFoundation(error));
        return std::string(static_cast<const char*>(xml.bytes), xml.length);
    }
}

Result<std::map<std::string, std::string>> propertyListTexts(std::string_view bytes,
                                                             std::span<const std::string> keys) {
    if (bytes.size() > largestPropertyList)
        return std::unexpected(Error{ErrorKind::invalid, "The property list is too large."});
    @autoreleasepool {
        NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
        NSPropertyListFormat format = NSPropertyListOpenStepFormat;
        NSError* error = nil;
        id list = [NSPropertyListSerialization propertyListWithData:data
                                                            options:NSPropertyListImmutable
                                                             format:&format
                                                              error:&error];
        if (!list)
            return std::unexpected(errorFromFoundation(error));
        if (format == NSPropertyListOpenStepFormat || ![list isKindOfClass:[NSDictionary class]])
            return std::unexpected(Error{ErrorKind::invalid, "This is not a property list that can be read."});
        NSDictionary<NSString*, id>* dictionary = list;
        std::map<std::string, std::string> texts;
        for (const auto& key : keys) {
            NSString* name = foundationText(key);
            if (auto text = name ? textOf([dictionary objectForKey:name]) : std::nullopt)
                texts[key] = std::move(*text);
        }
        return texts;
    }
}

} // namespace vantry
