#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantry {

/// The user's stored choices: the standard user defaults on macOS, an INI file in the user's configuration folder on
/// Linux. Every call goes to the store, so a value changed by another process is seen at the next read. Main thread.
/// Nothing here fails: an unreadable value is absent, a failed write changes nothing.
class PreferencesStore {
public:
    virtual ~PreferencesStore() = default;

    /// Whether the store holds a true Boolean (user defaults: YES, true, numbers other than 0; INI: anything but empty,
    /// "0" and "false"); false when missing.
    [[nodiscard]] virtual bool boolForKey(std::string_view key) const = 0;
    /// Absent when missing or not a text.
    [[nodiscard]] virtual std::optional<std::string> stringForKey(std::string_view key) const = 0;
    virtual void setBool(std::string_view key, bool value) = 0;
    virtual void setString(std::string_view key, std::string_view value) = 0;
};

} // namespace vantry
