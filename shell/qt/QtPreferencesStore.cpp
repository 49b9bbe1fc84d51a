#include "shell/qt/QtPreferencesStore.h"

#include "shell/qt/QtConversions.h"

#include <QStandardPaths>
#include <QVariant>

namespace vantry {

QtPreferencesStore::QtPreferencesStore()
    : QtPreferencesStore(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                         QStringLiteral("/ombrel/settings.ini")) {}

QtPreferencesStore::QtPreferencesStore(const QString& file) : settings_(file, QSettings::IniFormat) {}

QVariant QtPreferencesStore::value(std::string_view key) const {
    settings_.sync(); // another process may have written
    return settings_.value(qString(key));
}

void QtPreferencesStore::setValue(std::string_view key, const QVariant& value) {
    settings_.setValue(qString(key), value);
    settings_.sync();
}

bool QtPreferencesStore::boolForKey(std::string_view key) const { return value(key).toBool(); }

std::optional<std::string> QtPreferencesStore::stringForKey(std::string_view key) const {
    const QVariant stored = value(key);
    if (stored.typeId() != QMetaType::QString)
        return std::nullopt;
    return stored.toString().toStdString();
}

void QtPreferencesStore::setBool(std::string_view key, bool value) { setValue(key, value); }

void QtPreferencesStore::setString(std::string_view key, std::string_view value) { setValue(key, qString(value)); }

} // namespace vantry
