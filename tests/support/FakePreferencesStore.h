#pragma once

#include "platform/PreferencesStore.h"
#include "tests/support/FakeCallLog.h"

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <variant>

namespace vantry {

/// A store in memory that keeps types: text is no Boolean, a Boolean is no text.
class FakePreferencesStore : public PreferencesStore {
public:
    using Value = std::variant<bool, std::string>;

    explicit FakePreferencesStore(std::shared_ptr<FakeCallLog> log) : log_(std::move(log)) {}

    [[nodiscard]] bool boolForKey(std::string_view key) const override {
        log_->add("preferences.read " + std::string(key));
        const auto* value = find<bool>(key);
        return value && *value;
    }
    [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const override {
        log_->add("preferences.read " + std::string(key));
        const auto* value = find<std::string>(key);
        return value ? std::optional(*value) : std::nullopt;
    }
    void setBool(std::string_view key, bool value) override {
        log_->add("preferences.write " + std::string(key) + (value ? " true" : " false"));
        values.insert_or_assign(std::string(key), value);
    }
    void setString(std::string_view key, std::string_view value) override {
        log_->add("preferences.write " + std::string(key) + " " + std::string(value));
        values.insert_or_assign(std::string(key), std::string(value));
    }

    /// What is stored; a test changes it as another process would.
    std::map<std::string, Value, std::less<>> values;

private:
    template <class Type>
    const Type* find(std::string_view key) const {
        const auto found = values.find(key);
        return found == values.end() ? nullptr : std::get_if<Type>(&found->second);
    }

    std::shared_ptr<FakeCallLog> log_;
};

} // namespace vantry
