// A binary list: the magic, the objects, a table with the offset of each object, and a trailer that says where the
// table is and which object is the outermost. Numbers are big-endian; a container holds the numbers of its objects.

#include "platform/PropertyList.h"
#include "platform/linux/PropertyListFormats.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vantry {

namespace {

constexpr std::size_t trailerSize = 32;
constexpr std::size_t largestNumber = 8; // bytes of an offset, a reference or a length

/// The upper half of an object's first byte.
enum class Kind : unsigned char {
    constant = 0x0,
    integer = 0x1,
    real = 0x2,
    date = 0x3,
    data = 0x4,
    ascii = 0x5,
    utf16 = 0x6,
    uid = 0x8,
    array = 0xa,
    dictionary = 0xd
};

/// An object whose contents lie where objects may.
struct Object {
    Kind kind{};
    std::size_t count = 0; ///< of bytes, UTF-16 units, elements or entries
    std::size_t begin = 0; ///< where its contents do

    [[nodiscard]] bool isText() const { return kind == Kind::ascii || kind == Kind::utf16; }
};

class BinaryReader {
public:
    explicit BinaryReader(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] std::optional<std::map<std::string, std::string>> texts(std::span<const std::string> keys) {
        if (!readTrailer() || !isSound(top_, 0))
            return std::nullopt;
        const auto dictionary = object(top_);
        if (!dictionary || dictionary->kind != Kind::dictionary)
            return std::nullopt;
        // Only what stands under a key in the end is made a text: a list may name one long text many thousand times.
        std::vector<std::optional<std::uint64_t>> values(keys.size());
        for (std::size_t entry = 0; entry < dictionary->count; ++entry) {
            const auto name = object(reference(*dictionary, entry));
            for (std::size_t i = 0; i < keys.size(); ++i)
                if (name && isText(*name, keys[i]))
                    values[i] = reference(*dictionary, dictionary->count + entry);
        }
        std::map<std::string, std::string> texts;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const auto value = values[i] ? object(*values[i]) : std::nullopt;
            if (auto text = value ? textOf(*value) : std::nullopt)
                texts[keys[i]] = std::move(*text);
        }
        return texts;
    }

private:
    [[nodiscard]] unsigned char byteAt(std::size_t at) const { return static_cast<unsigned char>(bytes_[at]); }

    // The caller knows that they are there.
    [[nodiscard]] std::uint64_t numberAt(std::size_t at, std::size_t size) const {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < size; ++i)
            number = number << 8 | byteAt(at + i);
        return number;
    }

    [[nodiscard]] bool readTrailer() {
        if (bytes_.size() < binaryPropertyListMagic.size() + trailerSize)
            return false;
        const std::size_t trailer = bytes_.size() - trailerSize;
        offsetSize_ = byteAt(trailer + 6);
        referenceSize_ = byteAt(trailer + 7);
        objectCount_ = numberAt(trailer + 8, 8);
        top_ = numberAt(trailer + 16, 8);
        const std::uint64_t table = numberAt(trailer + 24, 8);
        if (offsetSize_ < 1 || offsetSize_ > largestNumber || referenceSize_ < 1 || referenceSize_ > largestNumber ||
            table < binaryPropertyListMagic.size() || table > trailer)
            return false;
        table_ = static_cast<std::size_t>(table);
        return objectCount_ == (trailer - table_) / offsetSize_ && (trailer - table_) % offsetSize_ == 0;
    }

    [[nodiscard]] std::optional<Object> object(std::uint64_t index) const {
        if (index >= objectCount_)
            return std::nullopt;
        const std::uint64_t offset = numberAt(table_ + static_cast<std::size_t>(index) * offsetSize_, offsetSize_);
        if (offset < binaryPropertyListMagic.size() || offset >= table_)
            return std::nullopt;
        const auto at = static_cast<std::size_t>(offset);
        const std::size_t low = byteAt(at) & 0x0f;
        Object found{.kind = static_cast<Kind>(byteAt(at) >> 4), .count = low, .begin = at + 1};
        switch (found.kind) {
        case Kind::constant: return low == 0 || low == 8 || low == 9 ? sized(found, 0) : std::nullopt;
        case Kind::integer: return low <= 4 ? fixed(found, std::size_t{1} << low) : std::nullopt;
        case Kind::real: return low == 2 || low == 3 ? fixed(found, std::size_t{1} << low) : std::nullopt;
        case Kind::date: return low == 3 ? fixed(found, 8) : std::nullopt;
        case Kind::uid: return fixed(found, low + 1);
        case Kind::data:
        case Kind::ascii: return counted(found, 1);
        case Kind::utf16: return counted(found, 2);
        case Kind::array: return counted(found, referenceSize_);
        case Kind::dictionary: return counted(found, 2 * referenceSize_);
        }
        return std::nullopt;
    }

    [[nodiscard]] std::optional<Object> sized(Object object, std::size_t unit) const {
        const bool fits = unit == 0 || object.count <= (table_ - object.begin) / unit;
        return fits ? std::optional(object) : std::nullopt;
    }
    [[nodiscard]] std::optional<Object> fixed(Object object, std::size_t size) const {
        object.count = size;
        return sized(object, 1);
    }
    // A count of fifteen says that the count follows as an integer.
    [[nodiscard]] std::optional<Object> counted(Object object, std::size_t unit) const {
        if (object.count == 0x0f) {
            if (object.begin >= table_ || byteAt(object.begin) >> 4 != static_cast<int>(Kind::integer))
                return std::nullopt;
            const std::size_t power = byteAt(object.begin) & 0x0f;
            const std::size_t size = std::size_t{1} << power;
            if (power > 3 || size > table_ - object.begin - 1)
                return std::nullopt;
            const std::uint64_t count = numberAt(object.begin + 1, size);
            if (count > bytes_.size())
                return std::nullopt;
            object.count = static_cast<std::size_t>(count);
            object.begin += 1 + size;
        }
        return sized(object, unit);
    }

    [[nodiscard]] std::uint64_t reference(const Object& container, std::size_t number) const {
        return numberAt(container.begin + number * referenceSize_, referenceSize_);
    }

    // Visits what is shared once for each use: a list that would grow without end, or holds itself, runs out of values
    // or of levels.
    [[nodiscard]] bool isSound(std::uint64_t index, std::size_t depth) {
        const auto found = object(index);
        if (!found || valuesLeft_-- == 0)
            return false;
        if (found->kind != Kind::array && found->kind != Kind::dictionary)
            return true;
        if (depth == deepestPropertyList)
            return false;
        const bool isDictionary = found->kind == Kind::dictionary;
        for (std::size_t i = 0; i < found->count * (isDictionary ? 2 : 1); ++i) {
            const std::uint64_t element = reference(*found, i);
            if (!isSound(element, depth + 1))
                return false;
            if (isDictionary && i < found->count && !object(element)->isText())
                return false;
        }
        return true;
    }

    [[nodiscard]] std::string_view contents(const Object& object, std::size_t unit) const {
        return bytes_.substr(object.begin, object.count * unit);
    }

    [[nodiscard]] std::optional<std::string> textOf(const Object& object) const {
        if (!object.isText() || object.count > longestPropertyListText)
            return std::nullopt;
        if (object.kind == Kind::ascii) {
            const auto text = contents(object, 1);
            return std::ranges::all_of(text, isAscii) ? std::optional<std::string>(text) : std::nullopt;
        }
        std::string text;
        for (std::size_t i = 0; i < object.count; ++i) {
            char32_t unit = unitOf(object, i);
            if (unit == 0 || (unit >= 0xdc00 && unit < 0xe000))
                return std::nullopt;
            if (unit >= 0xd800 && unit < 0xdc00) {
                const char32_t second = ++i < object.count ? unitOf(object, i) : 0;
                if (second < 0xdc00 || second >= 0xe000)
                    return std::nullopt;
                unit = 0x10000 + ((unit - 0xd800) << 10) + (second - 0xdc00);
            }
            appendUtf8(text, unit);
        }
        return text.size() <= longestPropertyListText ? std::optional(std::move(text)) : std::nullopt;
    }

    [[nodiscard]] static bool isAscii(char character) {
        return character != 0 && static_cast<unsigned char>(character) < 0x80;
    }
    [[nodiscard]] char32_t unitOf(const Object& object, std::size_t number) const {
        return static_cast<char32_t>(numberAt(object.begin + 2 * number, 2));
    }

    // A text has at least as many bytes in UTF-8 as it has units, so that most are told apart by their length.
    [[nodiscard]] bool isText(const Object& object, const std::string& text) const {
        if (object.kind == Kind::ascii ? object.count != text.size() : object.count > text.size())
            return false;
        return textOf(object) == text;
    }

    std::string_view bytes_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::uint64_t objectCount_ = 0;
    std::uint64_t top_ = 0;
    std::size_t table_ = 0;
    std::size_t valuesLeft_ = mostPropertyListValues;
};

} // namespace

std::optional<std::map<std::string, std::string>> binaryPropertyListTexts(std::string_view bytes,
                                                                          std::span<const std::string> keys) {
    return BinaryReader(bytes).texts(keys);
}

} // namespace vantry
