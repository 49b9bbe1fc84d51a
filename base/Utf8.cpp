#include "base/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vantry {

namespace {

struct Form {
    std::uint32_t smallest;
    std::size_t continuations;
    unsigned char leadMask;
};

// The length in bytes of the code point at the start of `text`, which is not empty; 0 if it is malformed.
std::size_t codePointLength(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    Form form{};
    if (lead < 0x80)
        return 1;
    else if ((lead & 0xe0) == 0xc0)
        form = {0x80, 1, 0x1f};
    else if ((lead & 0xf0) == 0xe0)
        form = {0x800, 2, 0x0f};
    else if ((lead & 0xf8) == 0xf0)
        form = {0x10000, 3, 0x07};
    else
        return 0;
    if (text.size() - 1 < form.continuations)
        return 0;
    std::uint32_t codePoint = lead & form.leadMask;
    for (std::size_t i = 1; i <= form.continuations; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xc0) != 0x80)
            return 0;
        codePoint = codePoint << 6 | (byte & 0x3f);
    }
    const bool wrong =
        codePoint < form.smallest || codePoint > 0x10ffff || (codePoint >= 0xd800 && codePoint <= 0xdfff);
    return wrong ? 0 : form.continuations + 1;
}

} // namespace

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const auto length = codePointLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count)
        text.remove_prefix(std::max<std::size_t>(codePointLength(text), 1));
    return count;
}

std::string withReplacementCharacters(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto length = codePointLength(text);
        result += length == 0 ? "\xef\xbf\xbd" : text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

} // namespace vantry
