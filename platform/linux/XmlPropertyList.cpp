// As much of XML as property lists are written in. A document with entities of its own is refused, and so is one in
// another encoding than UTF-8.

#include "base/Utf8.h"
#include "platform/PropertyList.h"
#include "platform/linux/PropertyListFormats.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <initializer_list>
#include <tuple>
#include <utility>

namespace vantry {

namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
constexpr std::string_view whitespace = " \t\r\n";

struct Tag {
    std::string_view name;
    bool isClosing = false; ///< </name>
    bool isEmpty = false;   ///< <name/>
};

/// What a text is read into. One that is too long is none.
class Text {
public:
    void append(std::string_view piece) {
        isWhole_ = isWhole_ && piece.size() <= longestPropertyListText - text_.size();
        if (isWhole_)
            text_.append(piece);
    }
    [[nodiscard]] bool isWhole() const { return isWhole_; }
    [[nodiscard]] const std::string& text() const { return text_; }

private:
    std::string text_;
    bool isWhole_ = true;
};

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, name) != names.end();
}

bool equalsIgnoringCase(std::string_view text, std::string_view lower) {
    return std::ranges::equal(text, lower, [](char left, char right) {
        return std::tolower(static_cast<unsigned char>(left)) == static_cast<unsigned char>(right);
    });
}

// What the declaration at the begin says; absent when that cannot be told.
std::optional<std::string_view> encodingOf(std::string_view declaration) {
    constexpr std::string_view attribute = "encoding";
    const auto at = declaration.find(attribute);
    if (at == std::string_view::npos)
        return "utf-8";
    auto rest = declaration.substr(at + attribute.size());
    const auto equals = rest.find_first_not_of(whitespace);
    if (equals == std::string_view::npos || rest[equals] != '=')
        return std::nullopt;
    rest.remove_prefix(equals + 1);
    rest.remove_prefix(std::min(rest.find_first_not_of(whitespace), rest.size()));
    if (rest.empty() || (rest[0] != '"' && rest[0] != '\''))
        return std::nullopt;
    const auto end = rest.find(rest[0], 1);
    return end == std::string_view::npos ? std::nullopt : std::optional(rest.substr(1, end - 1));
}

// `name` is what stands between "&" and ";".
std::optional<std::string> entityText(std::string_view name) {
    constexpr std::pair<std::string_view, const char*> known[] = {
        {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}};
    for (const auto& [entity, text] : known)
        if (name == entity)
            return text;
    if (!name.starts_with('#'))
        return std::nullopt;
    const bool isHexadecimal = name.starts_with("#x");
    const std::size_t base = isHexadecimal ? 16 : 10;
    const auto digits = name.substr(isHexadecimal ? 2 : 1);
    if (digits.empty())
        return std::nullopt;
    std::size_t codePoint = 0;
    for (const char digit : digits) {
        std::size_t value = std::string_view("0123456789abcdefABCDEF").find(digit);
        value -= value != std::string_view::npos && value >= 16 ? 6 : 0;
        codePoint = codePoint * base + value;
        if (value >= base || codePoint > 0x10ffff)
            return std::nullopt;
    }
    const bool isControl = codePoint < 0x20 && codePoint != '\t' && codePoint != '\n' && codePoint != '\r';
    if (isControl || (codePoint >= 0xd800 && codePoint < 0xe000))
        return std::nullopt;
    std::string text;
    appendUtf8(text, static_cast<char32_t>(codePoint));
    return text;
}

class XmlReader {
public:
    XmlReader(std::string_view document, std::span<const std::string> keys) : rest_(document), keys_(keys) {}

    [[nodiscard]] std::optional<std::map<std::string, std::string>> texts() {
        const bool isWhole =
            skipProlog() && opens("plist") && readsOutermost() && closes("plist") && skipMiscellany() && rest_.empty();
        return isWhole ? std::optional(std::move(texts_)) : std::nullopt;
    }

private:
    [[nodiscard]] bool skip(std::string_view prefix) {
        const bool isThere = rest_.starts_with(prefix);
        rest_.remove_prefix(isThere ? prefix.size() : 0);
        return isThere;
    }
    void skipWhitespace() { rest_.remove_prefix(std::min(rest_.find_first_not_of(whitespace), rest_.size())); }

    // What stands before `end`; both are read.
    [[nodiscard]] std::optional<std::string_view> upTo(std::string_view end) {
        const auto length = rest_.find(end);
        if (length == std::string_view::npos)
            return std::nullopt;
        const auto found = rest_.substr(0, length);
        rest_.remove_prefix(length + end.size());
        return found;
    }

    // What ends the comment or the instruction that begins here, if one does; its begin is read.
    [[nodiscard]] const char* endOfAside() { return skip("<!--") ? "-->" : skip("<?") ? "?>" : nullptr; }

    // Whitespace, comments and instructions. False when one of them has no end.
    [[nodiscard]] bool skipMiscellany() {
        for (;;) {
            skipWhitespace();
            const char* end = endOfAside();
            if (!end)
                return true;
            if (!upTo(end))
                return false;
        }
    }

    [[nodiscard]] bool skipProlog() {
        std::ignore = skip(byteOrderMark);
        if (rest_.starts_with("<?xml")) {
            const auto declaration = upTo("?>");
            const auto encoding = declaration ? encodingOf(*declaration) : std::nullopt;
            if (!encoding || !(equalsIgnoringCase(*encoding, "utf-8") || equalsIgnoringCase(*encoding, "us-ascii")))
                return false;
        }
        return skipMiscellany() && (!skip("<!DOCTYPE") || skipUpToTheTagsEnd("[<")) && skipMiscellany();
    }

    // Behind the ">" that stands in no quotes. False when there is none, or one of `refused` before it.
    [[nodiscard]] bool skipUpToTheTagsEnd(std::string_view refused) {
        while (!rest_.empty()) {
            const char character = rest_[0];
            rest_.remove_prefix(1);
            if (character == '>')
                return true;
            if (refused.find(character) != std::string_view::npos)
                return false;
            if ((character == '"' || character == '\'') && !upTo({&character, 1}))
                return false;
        }
        return false;
    }

    [[nodiscard]] std::optional<Tag> tag() {
        if (!skipMiscellany() || !skip("<"))
            return std::nullopt;
        Tag found{.name = {}, .isClosing = skip("/"), .isEmpty = false};
        const auto isLetter = [](char character) { return character >= 'a' && character <= 'z'; };
        const auto length = static_cast<std::size_t>(std::ranges::find_if_not(rest_, isLetter) - rest_.begin());
        found.name = rest_.substr(0, length);
        const std::string_view before = rest_;
        rest_.remove_prefix(length);
        if (length == 0 || rest_.empty() ||
            (whitespace.find(rest_[0]) == std::string_view::npos && rest_[0] != '>' && rest_[0] != '/'))
            return std::nullopt;
        if (!skipUpToTheTagsEnd("<"))
            return std::nullopt;
        found.isEmpty = before[before.size() - rest_.size() - 2] == '/';
        return found.isClosing && found.isEmpty ? std::nullopt : std::optional(found);
    }

    [[nodiscard]] bool opens(std::string_view name) {
        const auto found = tag();
        return found && found->name == name && !found->isClosing && !found->isEmpty;
    }
    [[nodiscard]] bool closes(std::string_view name) {
        const auto found = tag();
        return found && found->name == name && found->isClosing;
    }

    [[nodiscard]] bool readsOutermost() {
        const auto found = tag();
        return found && found->name == "dict" && !found->isClosing && countsValue() &&
               (found->isEmpty || readsDictionary(1));
    }

    [[nodiscard]] bool countsValue() {
        if (valuesLeft_ == 0)
            return false;
        --valuesLeft_;
        return true;
    }

    // Behind its opening tag, to its end. `level` is 1 for the outermost one.
    [[nodiscard]] bool readsDictionary(std::size_t level) {
        for (auto found = tag(); found; found = tag()) {
            if (found->isClosing)
                return found->name == "dict";
            Text key;
            if (found->name != "key" || !countsValue() || (!found->isEmpty && !readsText("key", &key)))
                return false;
            const bool isWanted = level == 1 && key.isWhole() && std::ranges::find(keys_, key.text()) != keys_.end();
            Text text;
            const auto value = tag();
            if (!value || !readsValue(*value, level, isWanted ? &text : nullptr))
                return false;
            if (isWanted && value->name == "string" && text.isWhole())
                texts_[key.text()] = text.text();
            else if (isWanted)
                texts_.erase(key.text());
        }
        return false;
    }

    [[nodiscard]] bool readsArray(std::size_t level) {
        for (auto found = tag(); found; found = tag()) {
            if (found->isClosing)
                return found->name == "array";
            if (!readsValue(*found, level, nullptr))
                return false;
        }
        return false;
    }

    // Behind its opening tag, to its end; inside of `level` containers.
    [[nodiscard]] bool readsValue(const Tag& opening, std::size_t level, Text* text) {
        if (opening.isClosing || !countsValue())
            return false;
        const bool isDictionary = opening.name == "dict";
        if (isDictionary || opening.name == "array") {
            if (level == deepestPropertyList)
                return false;
            return opening.isEmpty || (isDictionary ? readsDictionary(level + 1) : readsArray(level + 1));
        }
        if (isOneOf(opening.name, {"true", "false", "string", "integer", "real", "date", "data"}))
            return opening.isEmpty || readsText(opening.name, opening.name == "string" ? text : nullptr);
        return false;
    }

    // Behind the opening tag of `name`, to its end; without `text` for what nobody wants to know.
    [[nodiscard]] bool readsText(std::string_view name, Text* text) {
        const auto take = [text](std::string_view piece) {
            if (text)
                text->append(piece);
        };
        for (;;) {
            const auto length = rest_.find_first_of("<&");
            if (length == std::string_view::npos)
                return false;
            take(rest_.substr(0, length));
            rest_.remove_prefix(length);
            if (skip("&")) {
                constexpr std::size_t longestEntity = 16;
                const auto end = rest_.substr(0, longestEntity).find(';');
                const auto character = end == std::string_view::npos ? std::nullopt : entityText(rest_.substr(0, end));
                if (!character)
                    return false;
                take(*character);
                rest_.remove_prefix(end + 1);
            } else if (skip("<![CDATA[")) {
                const auto piece = upTo("]]>");
                if (!piece)
                    return false;
                take(*piece);
            } else if (const char* end = endOfAside()) {
                if (!upTo(end))
                    return false;
            } else {
                return closes(name);
            }
        }
    }

    std::string_view rest_;
    std::span<const std::string> keys_;
    std::map<std::string, std::string> texts_;
    std::size_t valuesLeft_ = mostPropertyListValues;
};

} // namespace

std::optional<std::map<std::string, std::string>> xmlPropertyListTexts(std::string_view bytes,
                                                                       std::span<const std::string> keys) {
    if (!isUtf8(bytes) || bytes.find('\0') != std::string_view::npos)
        return std::nullopt;
    return XmlReader(bytes, keys).texts();
}

} // namespace vantry
