#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantry {

[[nodiscard]] inline std::string bigEndian(std::uint64_t number, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size && i < 8; ++i)
        bytes[size - 1 - i] = static_cast<char>(number >> (8 * i) & 0xff);
    return bytes;
}

/// A binary property list, object by object, as right or wrong as it is told to be. A reference is an object's number;
/// references are as long as `referenceSize` says.
struct BinaryPropertyList {
    std::vector<std::string> objects;
    std::size_t offsetSize = 4;
    std::size_t referenceSize = 2;
    std::uint64_t top = 0;

    std::size_t add(std::string object) {
        objects.push_back(std::move(object));
        return objects.size() - 1;
    }
    std::size_t addAscii(std::string_view text) { return add(header(0x5, text.size()) + std::string(text)); }
    std::size_t addUtf16(std::u16string_view text) {
        std::string units;
        for (const char16_t unit : text)
            units += bigEndian(unit, 2);
        return add(header(0x6, text.size()) + units);
    }
    [[nodiscard]] std::string container(unsigned kind, std::size_t count, const std::vector<std::size_t>& parts) const {
        std::string object = header(kind, count);
        for (const auto part : parts)
            object += bigEndian(part, referenceSize);
        return object;
    }
    [[nodiscard]] std::string array(const std::vector<std::size_t>& elements) const {
        return container(0xa, elements.size(), elements);
    }
    /// First the keys, then the values.
    [[nodiscard]] std::string dictionary(const std::vector<std::size_t>& parts) const {
        return container(0xd, parts.size() / 2, parts);
    }
    [[nodiscard]] static std::string header(unsigned kind, std::size_t count) {
        constexpr std::size_t follows = 0x0f;
        const auto marker = [](unsigned high, std::size_t low) {
            return std::string(1, static_cast<char>(high << 4 | low));
        };
        return count < follows ? marker(kind, count) : marker(kind, follows) + marker(1, 2) + bigEndian(count, 4);
    }

    [[nodiscard]] std::string bytes() const {
        std::string list = "bplist00";
        std::string table;
        for (const auto& object : objects) {
            table += bigEndian(list.size(), offsetSize);
            list += object;
        }
        const std::size_t tableOffset = list.size();
        return list + table + trailer(objects.size(), tableOffset);
    }
    [[nodiscard]] std::string trailer(std::uint64_t count, std::uint64_t tableOffset) const {
        return std::string(6, '\0') + bigEndian(offsetSize, 1) + bigEndian(referenceSize, 1) + bigEndian(count, 8) +
               bigEndian(top, 8) + bigEndian(tableOffset, 8);
    }
};

} // namespace vantry
