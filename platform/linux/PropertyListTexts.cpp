#include "platform/PropertyList.h"
#include "platform/linux/PropertyListFormats.h"

namespace vantry {

void appendUtf8(std::string& text, char32_t codePoint) {
    const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    const auto continueWith = [&](unsigned shift) { append(0x80 | (codePoint >> shift & 0x3f)); };
    if (codePoint < 0x80) {
        append(codePoint);
    } else if (codePoint < 0x800) {
        append(0xc0 | codePoint >> 6);
        continueWith(0);
    } else if (codePoint < 0x10000) {
        append(0xe0 | codePoint >> 12);
        continueWith(6);
        continueWith(0);
    } else {
        append(0xf0 | codePoint >> 18);
        continueWith(12);
        continueWith(6);
        continueWith(0);
    }
}

Result<std::map<std::string, std::string>> propertyListTexts(std::string_view bytes,
                                                             std::span<const std::string> keys) {
    if (bytes.size() > largestPropertyList)
        return std::unexpected(Error{ErrorKind::invalid, "The property list is too large."});
    auto texts = bytes.starts_with(binaryPropertyListMagic) ? binaryPropertyListTexts(bytes, keys)
                                                            : xmlPropertyListTexts(bytes, keys);
    if (!texts)
        return std::unexpected(Error{ErrorKind::invalid, "This is no property list that can be read."});
    return std::move(*texts);
}

} // namespace vantry
