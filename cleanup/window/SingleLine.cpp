#include "cleanup/window/SingleLine.h"

#include "base/Utf8.h"

#include <array>
#include <cstddef>

namespace vantry {

namespace {

constexpr std::string_view replacementCharacter = "\xef\xbf\xbd";

/// Characters in a row of Unicode, as UTF-8 that differs in its last byte only.
struct CharacterRange {
    std::string_view head;
    unsigned char first;
    unsigned char last;
};

constexpr std::array<CharacterRange, 7> unwanted{{
    {"", 0x00, 0x1f},         // the ASCII controls
    {"", 0x7f, 0x7f},         // delete
    {"\xc2", 0x80, 0x9f},     // the other controls
    {"\xd8", 0x9c, 0x9c},     // the Arabic letter mark
    {"\xe2\x80", 0x8e, 0x8f}, // the marks that say from where to where
    {"\xe2\x80", 0xa8, 0xae}, // breaks of lines and paragraphs, embeddings and overrides
    {"\xe2\x81", 0xa6, 0xa9}, // isolates
}};

/// How many bytes at the begin of `text` are an unwanted character.
std::size_t unwantedLength(std::string_view text) {
    for (const auto& range : unwanted) {
        if (text.size() <= range.head.size() || !text.starts_with(range.head))
            continue;
        const auto byte = static_cast<unsigned char>(text[range.head.size()]);
        if (byte >= range.first && byte <= range.last)
            return range.head.size() + 1;
    }
    return 0;
}

} // namespace

std::string singleLine(std::string_view name) {
    const std::string valid = withReplacementCharacters(name);
    std::string line;
    line.reserve(valid.size());
    for (std::string_view rest = valid; !rest.empty();) {
        const auto length = unwantedLength(rest);
        if (length == 0)
            line += rest.front();
        else
            line += replacementCharacter;
        rest.remove_prefix(length == 0 ? 1 : length);
    }
    return line;
}

} // namespace vantry
