#include "shell/qt/QtAppearance.h"

#include "shell/qt/QtConversions.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QPalette>
#include <QWidget>

namespace vantry {

namespace {

const auto portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const auto portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const auto colorSchemeKey = QStringLiteral("color-scheme");

// The portal's values; 0 is no preference.
constexpr unsigned preferDark = 1;
constexpr unsigned preferLight = 2;

Appearance appearanceOf(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128 ? Appearance::dark : Appearance::light;
}

QPalette paletteFor(Appearance appearance) {
    const bool dark = appearance == Appearance::dark;
    const auto role = [&](SystemColor color) { return qColor(DynamicColor{color}, appearance); };
    const QColor window = role(SystemColor::windowBackground);
    const QColor base = dark ? QColor(30, 30, 30) : QColor(Qt::white);
    const QColor button = dark ? QColor(72, 72, 74) : QColor(Qt::white);
    const QColor text = dark ? QColor(235, 235, 235) : QColor(30, 30, 30);
    const QColor disabled = dark ? QColor(125, 125, 127) : QColor(160, 160, 162);
    QPalette palette(button, window);
    for (const auto foreground : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(foreground, text);
        palette.setColor(QPalette::Disabled, foreground, disabled);
    }
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Button, button);
    palette.setColor(QPalette::ToolTipBase, dark ? QColor(60, 60, 62) : QColor(246, 246, 246));
    palette.setColor(QPalette::PlaceholderText, disabled);
    palette.setColor(QPalette::Highlight, role(SystemColor::blue));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, role(SystemColor::blue));
    return palette;
}

} // namespace

Appearance appearanceOf(const QWidget& widget) { return appearanceOf(widget.palette()); }

QtAppearance::QtAppearance() : withoutPreference_(appearanceOf(QApplication::palette())), current_(withoutPreference_) {
    apply(current_);
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    qRegisterMetaType<QDBusVariant>(); // without it the slot below is never called
    bus.connect(portalService, portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    askPortal();
}

// Asynchronous: starting the portal would delay the first frame.
void QtAppearance::askPortal() {
    auto question =
        QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, QStringLiteral("Read"));
    question << appearanceGroup << colorSchemeKey;
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isValid())
            setColorScheme(reply.value().variant());
        answer->deleteLater();
    });
}

void QtAppearance::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
    if (group == appearanceGroup && key == colorSchemeKey)
        setColorScheme(value.variant());
}

void QtAppearance::setColorScheme(const QVariant& value) {
    // `Read` wraps its answer in two variants.
    const QVariant scheme = value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
    switch (scheme.toUInt()) {
    case preferDark: apply(Appearance::dark); break;
    case preferLight: apply(Appearance::light); break;
    default: apply(withoutPreference_); break;
    }
}

void QtAppearance::apply(Appearance appearance) {
    QApplication::setPalette(paletteFor(appearance));
    if (std::exchange(current_, appearance) != appearance)
        emit changed();
}

} // namespace vantry
