#include "base/Text.h"

#include "base/Format.h"
#include "base/Utf8.h"

#include <algorithm>
#include <array>

namespace vantry {

namespace {

/// Consecutive characters whose UTF-8 differs only in the last byte.
struct CharacterRange {
    std::string_view head;
    unsigned char first;
    unsigned char last;
};

constexpr std::array<CharacterRange, 7> deceptive{{
    {"", 0x00, 0x1f},         // the ASCII controls
    {"", 0x7f, 0x7f},         // delete
    {"\xc2", 0x80, 0x9f},     // the other controls
    {"\xd8", 0x9c, 0x9c},     // the Arabic letter mark
    {"\xe2\x80", 0x8e, 0x8f}, // the LRM and RLM marks
    {"\xe2\x80", 0xa8, 0xae}, // line and paragraph separators, embeddings and overrides
    {"\xe2\x81", 0xa6, 0xa9}, // isolates
}};

constexpr std::string_view replacementCharacter = "\xef\xbf\xbd";

bool isUnreserved(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           std::string_view("-._~").find(byte) != std::string_view::npos;
}

} // namespace

std::string countText(std::size_t count, std::string_view noun) {
    return formatted("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string joinedTexts(std::initializer_list<std::string_view> texts) {
    std::string joined;
    for (const auto text : texts)
        if (!text.empty())
            joined.append(joined.empty() ? "" : " · ").append(text);
    return joined;
}

std::string asciiLowercase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

std::string percentEncoded(std::string_view path) {
    std::string text;
    for (const char byte : path)
        text += byte == '/' || isUnreserved(byte) ? std::string(1, byte)
                                                  : formatted("%{:02X}", static_cast<unsigned char>(byte));
    return text;
}

std::size_t deceptiveLength(std::string_view text) {
    if (!text.empty() && text.front() >= ' ' && text.front() < '\x7f')
        return 0; // printable ASCII, as most of a name is
    for (const auto& range : deceptive) {
        if (text.size() <= range.head.size() || !text.starts_with(range.head))
            continue;
        const auto byte = static_cast<unsigned char>(text[range.head.size()]);
        if (byte >= range.first && byte <= range.last)
            return range.head.size() + 1;
    }
    return 0;
}

std::string singleLine(std::string_view name) {
    const std::string valid = withReplacementCharacters(name);
    std::string line;
    line.reserve(valid.size());
    for (std::string_view rest = valid; !rest.empty();) {
        const auto length = deceptiveLength(rest);
        if (length == 0)
            line += rest.front();
        else
            line += replacementCharacter;
        rest.remove_prefix(length == 0 ? 1 : length);
    }
    return line;
}

} // namespace vantry
