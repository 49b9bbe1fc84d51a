#include "cleanup/scan/PropertyListPayload.h"

#include "platform/PropertyList.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace vantry {

namespace {

using Json = nlohmann::json;

// Takes one object of texts under known keys, each once, without making a document of it.
class TextsReader : public nlohmann::json_sax<Json> {
public:
    explicit TextsReader(std::span<const std::string> keys) : keys_(keys) {}

    std::map<std::string, std::string> texts;

    bool null() override { return false; }
    bool boolean(bool /*value*/) override { return false; }
    bool number_integer(number_integer_t /*value*/) override { return false; }
    bool number_unsigned(number_unsigned_t /*value*/) override { return false; }
    bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return false; }
    bool string(string_t& value) override {
        const bool isTold = value.size() <= longestPropertyListText && value.find('\0') == std::string::npos;
        return inObject_ && isTold && texts.emplace(std::move(key_), std::move(value)).second;
    }
    bool binary(binary_t& /*value*/) override { return false; }
    bool start_object(std::size_t /*count*/) override { return !std::exchange(inObject_, true); }
    bool key(string_t& value) override {
        key_ = std::move(value);
        return std::ranges::find(keys_, key_) != keys_.end();
    }
    bool end_object() override { return true; }
    bool start_array(std::size_t /*count*/) override { return false; }
    bool end_array() override { return false; }
    bool parse_error(std::size_t /*at*/, const std::string& /*token*/,
                     const nlohmann::json::exception& /*error*/) override {
        return false;
    }

private:
    std::span<const std::string> keys_;
    std::string key_;
    bool inObject_ = false;
};

} // namespace

std::string encoded(const PropertyListPayload& payload) {
    constexpr const char* nothing = "null\n";
    if (!payload.texts)
        return nothing;
    std::string line = Json(*payload.texts).dump() + '\n';
    return line.size() <= longestPropertyListLine ? line : nothing;
}

std::optional<PropertyListPayload> decodedPropertyList(std::string_view line, std::span<const std::string> keys) {
    if (line == "null")
        return PropertyListPayload();
    // The parser takes a zero for the end of the text.
    TextsReader reader(keys);
    if (line.size() >= longestPropertyListLine || line.find('\0') != std::string_view::npos ||
        !Json::sax_parse(line, &reader))
        return std::nullopt;
    return PropertyListPayload{std::move(reader.texts)};
}

} // namespace vantry
