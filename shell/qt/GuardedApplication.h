#pragma once

#include <QApplication>
#include <map>

namespace vantry {

/// The application, which keeps the repetitions of a held key from all its windows, for the keys that press buttons and
/// close windows: no question may be answered by a key that was already down when it appeared.
class GuardedApplication : public QApplication {
    Q_OBJECT

public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

private:
    [[nodiscard]] bool isRepetition(const QObject& receiver, const QEvent& event);

    std::map<int, quint64> releases_; ///< by key, the time of the last release, in milliseconds
};

} // namespace vantry
