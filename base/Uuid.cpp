#include "base/Uuid.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <functional>
#include <random>
#include <string_view>

namespace vantry {

std::string randomUuid() {
    constexpr std::string_view digits = "0123456789ABCDEF";
    // Making one asks the processor what it can do, which takes long in a virtual machine. It holds no state that a
    // forked process would share.
    thread_local std::random_device source;
    std::array<std::random_device::result_type, 4> words{};
    std::ranges::generate(words, std::ref(source)); // each call is a system call or a slow instruction
    auto bytes = std::bit_cast<std::array<unsigned char, 16>>(words);
    bytes[6] = static_cast<unsigned char>(0x40 | (bytes[6] & 0x0f)); // version 4
    bytes[8] = static_cast<unsigned char>(0x80 | (bytes[8] & 0x3f)); // the variant of RFC 9562
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            text += '-';
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 0x0f];
    }
    return text;
}

} // namespace vantry
