#include "shell/qt/QtPreferencesStore.h"

#include <QStandardPaths>

namespace vantry {

QtPreferencesStore::QtPreferencesStore()
    : QtPreferencesStore(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                         QStringLiteral("/ombrel/settings.ini")) {}

QVariant QtPreferencesStore::value(std::string_view key) const {
    settings_.sync(); // another process may have written
    return settings_.value(qString(key));
}

void QtPreferencesStore::setValue(std::string_view key, const QVariant& value) {
    const QVariant before = this->value(key);
    // A new object, because the status of a QSettings stays in error after the first one.
    QSettings writer(settings_.fileName(), QSettings::IniFormat);
    writer.setValue(qString(key), value);
    writer.sync();
    if (writer.status() != QSettings::AccessError)
        return;
    // QSettings would return the unwritten value until the process ends.
    if (before.isValid())
        writer.setValue(qString(key), before);
    else
        writer.remove(qString(key));
}

std::optional<std::string> QtPreferencesStore::stringForKey(std::string_view key) const {
    const QVariant stored = value(key);
    if (stored.typeId() != QMetaType::QString)
        return std::nullopt;
    return stored.toString().toStdString();
}

} // namespace vantry
