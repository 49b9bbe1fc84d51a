#pragma once

#include "base/Color.h"

#include <QObject>
#include <QString>

class QDBusVariant;

namespace vantry {

/// Whether the desktop is light or dark, by the desktop portal ("org.freedesktop.appearance") or, without one, by the
/// desktop's palette. Gives the application a matching palette. Main thread.
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

    const Appearance withoutPreference_; ///< from the desktop's own palette
    Appearance current_;
};

} // namespace vantry
