#include "shell/qt/GuardedApplication.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <algorithm>
#include <array>

namespace vantry {

namespace {

constexpr std::array guardedKeys{Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_Escape};
constexpr quint64 shortestRelease = 30; // milliseconds; nobody presses a key again faster than this

} // namespace

// Runs before all event filters. The accessibility bridge's filter replaces events by copies without a timestamp.
bool GuardedApplication::notify(QObject* receiver, QEvent* event) {
    return isRepetition(*receiver, *event) || QApplication::notify(receiver, event);
}

// X11 repeats a key with pairs of release and press that have the same timestamp. Qt marks them as auto-repeat only if
// the press is in its queue when it reads the release, so the timestamps are compared too. Events without a timestamp
// have 0.
bool GuardedApplication::isRepetition(const QObject& receiver, const QEvent& event) {
    const bool isPress = event.type() == QEvent::KeyPress;
    if ((!isPress && event.type() != QEvent::KeyRelease) || !receiver.isWindowType())
        return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    if (std::ranges::find(guardedKeys, key.key()) == guardedKeys.end())
        return false;
    quint64& release = releases_[key.key()];
    if (isPress)
        return key.isAutoRepeat() || (key.timestamp() != 0 && key.timestamp() - release <= shortestRelease);
    if (key.timestamp() != 0)
        release = key.timestamp();
    return false;
}

bool pressFocusedButton(const QKeyEvent& event, const QWidget& window) {
    auto* button = qobject_cast<QAbstractButton*>(window.focusWidget());
    if ((event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) || !button)
        return false;
    button->click();
    return true;
}

} // namespace vantry
