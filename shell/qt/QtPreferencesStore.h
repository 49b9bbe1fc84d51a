#pragma once

#include "platform/PreferencesStore.h"

#include <QSettings>
#include <QString>

namespace vantry {

/// An INI file; "ombrel/settings.ini" in the user's configuration folder unless another one is named.
class QtPreferencesStore : public PreferencesStore {
public:
    QtPreferencesStore();
    explicit QtPreferencesStore(const QString& file);

    [[nodiscard]] bool boolForKey(std::string_view key) const override;
    [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;
    void setString(std::string_view key, std::string_view value) override;

private:
    [[nodiscard]] QVariant value(std::string_view key) const;
    void setValue(std::string_view key, const QVariant& value);

    mutable QSettings settings_;
};

} // namespace vantry
