#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <map>

namespace vantry {

/// Drops auto-repeated presses of the keys that press buttons and close windows, so that a key that was already down
/// when a question appeared cannot answer it.
class GuardedApplication : public QApplication {
    Q_OBJECT

public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

private:
    [[nodiscard]] bool isRepetition(const QObject& receiver, const QEvent& event);

    std::map<int, quint64> releases_; ///< time of the last release of each key, in milliseconds
};

/// If the key is Return or Enter, presses the focused button of `window` and returns true. Qt does so for Space only.
bool pressFocusedButton(const QKeyEvent& event, const QWidget& window);

} // namespace vantry
