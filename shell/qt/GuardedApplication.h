#pragma once

#include <QApplication>
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

} // namespace vantry
