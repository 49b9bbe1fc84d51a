#include "shell/qt/pictures/PictureEnd.h"

#include <algorithm>

namespace vantry {

namespace {

// What follows 0xFF.
constexpr std::byte startOfImage{0xd8};
constexpr std::byte endOfImage{0xd9};
constexpr std::byte startOfScan{0xda};
constexpr std::byte markerPrefix{0xff};

// Without a length and contents of its own: a restart in the middle of a scan, or nothing but a 0xFF of its data.
bool standsAlone(std::byte marker) {
    constexpr std::byte firstRestart{0xd0};
    return marker == std::byte{0} || marker == std::byte{1} || (marker >= firstRestart && marker <= startOfImage);
}

} // namespace

bool isWholeJpeg(std::span<const std::byte> contents) {
    bool inScan = false;
    for (std::size_t at = 0;;) {
        if (inScan || at >= contents.size() || contents[at] != markerPrefix) {
            const auto rest = contents.subspan(std::min(at, contents.size()));
            at += static_cast<std::size_t>(std::ranges::find(rest, markerPrefix) - rest.begin());
        }
        while (at < contents.size() && contents[at] == markerPrefix) // one, or several to fill up
            ++at;
        if (at >= contents.size())
            return false;
        const std::byte marker = contents[at++];
        if (marker == endOfImage)
            return true;
        if (standsAlone(marker))
            continue;
        if (contents.size() - at < 2)
            return false;
        at += std::to_integer<std::size_t>(contents[at]) * 256 + std::to_integer<std::size_t>(contents[at + 1]);
        inScan = marker == startOfScan;
    }
}

bool hasWholeGifFrame(std::span<const std::byte> contents) {
    constexpr std::byte extension{0x21};
    constexpr std::byte frame{0x2c};
    constexpr std::size_t headerSize = 13;
    constexpr std::size_t descriptorSize = 9;
    const auto at = [contents](std::size_t place) { return place < contents.size() ? contents[place] : std::byte{0}; };
    // The size of the colour table that the byte of flags at `place` tells of.
    const auto tableSize = [&at](std::size_t place) {
        const auto flags = std::to_integer<unsigned>(at(place));
        return (flags & 0x80U) != 0 ? std::size_t{3} << ((flags & 0x07U) + 1) : 0;
    };
    std::size_t place = headerSize + tableSize(headerSize - 3);
    while (place < contents.size()) {
        const std::byte block = contents[place++];
        if (block != extension && block != frame)
            return false;
        if (block == frame)
            place += descriptorSize + tableSize(place + descriptorSize - 1);
        ++place; // the kind of extension, or how long the frame's first codes are
        while (place < contents.size() && contents[place] != std::byte{0})
            place += 1 + std::to_integer<std::size_t>(contents[place]);
        if (block == frame)
            return place < contents.size();
        ++place;
    }
    return false;
}

} // namespace vantry
