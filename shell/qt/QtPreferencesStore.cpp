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
    const QVariant before = this->value(key);
    // An object of its own, because the status of one that met an error once stays as it is.
    QSettings writer(settings_.fileName(), QSettings::IniFormat);
    writer.setValue(qString(key), value);
    writer.sync();
    if (writer.status() != QSettings::AccessError)
        return;
    // What could not be written would be taken for stored until the process ends.
    if (before.isValid())
        writer.setValue(qString(key), before);
    else
        writer.remove(qString(key));
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
