#include "tests/fuzz/PropertyListFuzz.h"

#include "base/Utf8.h"
#include "cleanup/scan/PropertyListPayload.h"
#include "platform/PropertyList.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace vantry {

namespace {

const std::array<std::string, 4> keys{"CFBundleIdentifier", "Target Identifier", "GUID", "\xc3\xa9"};

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

void requireTold(const PropertyListPayload& payload) {
    if (payload.texts)
        for (const auto& [key, text] : *payload.texts) {
            require(std::ranges::find(keys, key) != keys.end(), "a key is one that was asked for");
            require(isUtf8(text) && text.find('\0') == std::string::npos, "a text is UTF-8 without a zero");
            require(text.size() <= longestPropertyListText, "a text is not too long");
        }
    std::string line = encoded(payload);
    require(std::ranges::count(line, '\n') == 1 && line.ends_with('\n'), "what is written is one line");
    line.pop_back();
    require(decodedPropertyList(line, keys) == payload, "a line is read as it is written");
}

} // namespace

void readPropertyList(std::string_view bytes) {
    if (const auto texts = propertyListTexts(bytes, keys))
        requireTold({*texts});
    if (const auto payload = decodedPropertyList(bytes, keys))
        requireTold(*payload);
}

} // namespace vantry
