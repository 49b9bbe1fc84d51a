#pragma once

#include "platform/PreferencesStore.h"
#include "shell/qt/QtConversions.h"

#include <QSettings>
#include <QString>
#include <QVariant>

namespace vantry {

/// An INI file; "ombrel/settings.ini" in the user's configuration folder unless another one is named.
class QtPreferencesStore : public PreferencesStore {
public:
    QtPreferencesStore();
    explicit QtPreferencesStore(const QString& file) : settings_(file, QSettings::IniFormat) {}

    [[nodiscard]] bool boolForKey(std::string_view key) const override { return value(key).toBool(); }
    [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override { setValue(key, value); }
    void setString(std::string_view key, std::string_view value) override { setValue(key, qString(value)); }

private:
    [[nodiscard]] QVariant value(std::string_view key) const;
    void setValue(std::string_view key, const QVariant& value);

    mutable QSettings settings_;
};

} // namespace vantry
