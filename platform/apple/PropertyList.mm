#include "platform/PropertyList.h"

#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <algorithm>

namespace vantry {

namespace {

// XML 1.0 has no control characters but tab and the line breaks; the serialization would write them all the same.
NSString* xmlText(const std::string& text) {
    const bool holdable = std::ranges::none_of(text, [](char character) {
        return static_cast<unsigned char>(character) < 0x20 && character != '\t' && character != '\n' &&
               character != '\r';
    });
    return holdable ? foundationText(text) : nil;
}

// Nil when a text in it is no UTF-8 or nothing for XML.
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

} // namespace vantry
