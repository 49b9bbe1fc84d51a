#pragma once

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace vantry {

/// Reads a JSON object of scalars and arrays of texts from somebody who is not trusted. It builds no document, and
/// stops at the first thing that does not belong there: a repeated key, deeper nesting, a value that `Derived` refuses.
///
/// `Derived` has an `isWhole()`, and hides those functions below whose values it takes. Each is given the value's key.
template <class Derived>
class JsonObjectReader : public nlohmann::json_sax<nlohmann::json> {
public:
    static bool take(const std::string& /*key*/, bool /*value*/) { return false; }
    static bool take(const std::string& /*key*/, std::int64_t /*value*/) { return false; }
    static bool take(const std::string& /*key*/, double /*value*/) { return false; }
    static bool takeText(const std::string& /*key*/, const std::string& /*value*/) { return false; }
    static bool takeArray(const std::string& /*key*/) { return false; }
    static bool takeElement(const std::string& /*key*/, const std::string& /*value*/) { return false; }

    /// Whether `json` was such an object. The parser would stop at a NUL.
    [[nodiscard]] bool reads(std::string_view json) {
        return json.find('\0') == std::string_view::npos && nlohmann::json::sax_parse(json, this) && self().isWhole();
    }
    [[nodiscard]] bool has(const char* key) const { return keys_.contains(key); }

    bool null() override { return false; }
    bool boolean(bool value) override { return atTop() && self().take(key_, value); }
    bool number_integer(number_integer_t value) override { return atTop() && self().take(key_, value); }
    bool number_unsigned(number_unsigned_t value) override {
        return value <= static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max()) &&
               number_integer(static_cast<std::int64_t>(value));
    }
    bool number_float(number_float_t value, const string_t& /*text*/) override {
        return atTop() && self().take(key_, value);
    }
    bool string(string_t& value) override {
        return inArray_ ? self().takeElement(key_, std::move(value))
                        : inObject_ && self().takeText(key_, std::move(value));
    }
    bool binary(binary_t& /*value*/) override { return false; }
    bool start_object(std::size_t /*count*/) override { return !std::exchange(inObject_, true); }
    bool key(string_t& value) override {
        key_ = std::move(value);
        return keys_.insert(key_).second;
    }
    bool end_object() override { return true; }
    bool start_array(std::size_t /*count*/) override {
        return atTop() && self().takeArray(key_) && !std::exchange(inArray_, true);
    }
    bool end_array() override {
        inArray_ = false;
        return true;
    }
    bool parse_error(std::size_t /*at*/, const std::string& /*token*/,
                     const nlohmann::json::exception& /*error*/) override {
        return false;
    }

private:
    Derived& self() { return static_cast<Derived&>(*this); }
    [[nodiscard]] bool atTop() const { return inObject_ && !inArray_; }

    std::string key_;
    std::set<std::string> keys_;
    bool inObject_ = false;
    bool inArray_ = false;
};

} // namespace vantry
