#include "base/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace vantry {

namespace {

struct Form {
    std::uint32_t smallest;
    std::size_t continuations;
    unsigned char leadMask;
};

} // namespace

bool isUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i++]);
        Form form{};
        if (lead < 0x80)
            continue;
        else if ((lead & 0xe0) == 0xc0)
            form = {0x80, 1, 0x1f};
        else if ((lead & 0xf0) == 0xe0)
            form = {0x800, 2, 0x0f};
        else if ((lead & 0xf8) == 0xf0)
            form = {0x10000, 3, 0x07};
        else
            return false;
        if (text.size() - i < form.continuations)
            return false;
        std::uint32_t codePoint = lead & form.leadMask;
        for (std::size_t end = i + form.continuations; i < end; ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            if ((byte & 0xc0) != 0x80)
                return false;
            codePoint = codePoint << 6 | (byte & 0x3f);
        }
        if (codePoint < form.smallest || codePoint > 0x10ffff || (codePoint >= 0xd800 && codePoint <= 0xdfff))
            return false;
    }
    return true;
}

} // namespace vantry
