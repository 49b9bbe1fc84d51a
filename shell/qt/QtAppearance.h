#pragma once

#include "base/Color.h"

#include <QObject>
#include <QString>

class QDBusVariant;

namespace vantry {

/// Whether the desktop is light or dark: what the desktop portal says ("org.freedesktop.appearance"), else how light
/// the palette of the application is. Gives the application a palette that fits. Main thread.
class QtAppearance : public QObject {
    Q_OBJECT

public:
    QtAppearance();

    [[nodiscard]] Appearance current() const { return current_; }

signals:
    void changed();

private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void askPortal();
    void setColorScheme(const QVariant& value);
    void apply(Appearance appearance);

    const Appearance withoutPreference_; ///< of the palette that the desktop gave
    Appearance current_;
};

} // namespace vantry
