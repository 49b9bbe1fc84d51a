#include "base/Base64.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vantry {

namespace {

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string base64Text(std::string_view bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const auto group = bytes.substr(i, 3);
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 3; ++k)
            bits = bits << 8 | (k < group.size() ? static_cast<unsigned char>(group[k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= group.size() ? digits[bits >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

std::optional<std::string> bytesOfBase64(std::string_view text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i += 4) {
        std::uint32_t bits = 0;
        for (const char character : text.substr(i, 4)) {
            const auto digit = character == '=' ? 0 : digits.find(character);
            if (digit == std::string_view::npos)
                return std::nullopt;
            bits = bits << 6 | static_cast<std::uint32_t>(digit);
        }
        for (const int shift : {16, 8, 0})
            bytes += static_cast<char>(bits >> shift & 0xff);
    }
    const auto padding = static_cast<std::size_t>(std::ranges::count(text, '='));
    if (padding > 2)
        return std::nullopt;
    bytes.resize(bytes.size() - padding);
    // Misplaced padding and stray bits show when the bytes are encoded again.
    if (base64Text(bytes) != text)
        return std::nullopt;
    return bytes;
}

} // namespace vantry
