#include "platform/linux/TrashEntry.h"

#include "base/Format.h"
#include "base/Utf8.h"

#include <algorithm>

namespace vantry {

namespace {

constexpr std::size_t longestExtension = 32; // bytes, with its dot; what is longer is no extension but a sentence

bool isKept(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '/' || byte == '-' || byte == '_' || byte == '.' || byte == '~';
}

std::string percentEncoded(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        if (isKept(byte))
            text += byte;
        else
            text += formatted("%{:02X}", static_cast<unsigned char>(byte));
    }
    return text;
}

std::string_view extensionOf(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == name.npos || dot == 0 || name.size() - dot > longestExtension)
        return {};
    return name.substr(dot);
}

std::string_view shortened(std::string_view text, std::size_t size) {
    if (text.size() <= size)
        return text;
    std::string_view begin = text.substr(0, size);
    if (isUtf8(text)) {
        while (!isUtf8(begin))
            begin.remove_suffix(1);
    }
    return begin;
}

} // namespace

std::string trashInfoText(const std::filesystem::path& origin, const std::tm& deleted) {
    return formatted("[Trash Info]\nPath={}\nDeletionDate={:04}-{:02}-{:02}T{:02}:{:02}:{:02}\n",
                     percentEncoded(origin.native()), deleted.tm_year + 1900, deleted.tm_mon + 1, deleted.tm_mday,
                     deleted.tm_hour, deleted.tm_min, deleted.tm_sec);
}

std::string trashName(std::string_view name, std::string_view tag, std::size_t limit) {
    const std::string_view extension = extensionOf(name);
    const std::string_view stem = name.substr(0, name.size() - extension.size());
    std::string end;
    if (!tag.empty())
        end.append(".").append(tag);
    end += extension;
    return std::string(shortened(stem, limit - std::min(limit, end.size()))) + end;
}

} // namespace vantry
