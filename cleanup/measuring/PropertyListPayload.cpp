#include "cleanup/measuring/PropertyListPayload.h"

#include "cleanup/measuring/JsonObjectReader.h"
#include "platform/PropertyList.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace vantry {

namespace {

class TextsReader : public JsonObjectReader<TextsReader> {
public:
    explicit TextsReader(std::span<const std::string> keys) : keys_(keys) {}

    std::map<std::string, std::string> texts;

    bool takeText(const std::string& key, std::string value) {
        return std::ranges::find(keys_, key) != keys_.end() && value.size() <= longestPropertyListText &&
               value.find('\0') == std::string::npos && texts.emplace(key, std::move(value)).second;
    }
    static bool isWhole() { return true; }

private:
    std::span<const std::string> keys_;
};

} // namespace

std::string encoded(const PropertyListPayload& payload) {
    constexpr const char* nothing = "null\n";
    if (!payload.texts)
        return nothing;
    std::string line = nlohmann::json(*payload.texts).dump() + '\n';
    return line.size() <= longestPropertyListLine ? line : nothing;
}

std::optional<PropertyListPayload> decodedPropertyList(std::string_view line, std::span<const std::string> keys) {
    if (line == "null")
        return PropertyListPayload();
    TextsReader reader(keys);
    if (line.size() >= longestPropertyListLine || !reader.reads(line))
        return std::nullopt;
    return PropertyListPayload{std::move(reader.texts)};
}

} // namespace vantry
