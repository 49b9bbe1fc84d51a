#include "shell/qt/QtWorkspace.h"

#include <QDBusConnection>
#include <QGuiApplication>
#include <QObject>
#include <QScreen>
#include <QWindow>
#include <utility>

namespace vantry {

namespace {

Screen screenOf(const QScreen& screen) {
    const QRect frame = screen.geometry();
    return {screen.name().toStdString(),
            {static_cast<double>(frame.x()), static_cast<double>(frame.y()), static_cast<double>(frame.width()),
             static_cast<double>(frame.height())}};
}

} // namespace

/// logind tells before sleeping and after waking; only the second counts.
class WakeObserver : public QObject, public Subscription {
    Q_OBJECT

public:
    explicit WakeObserver(std::function<void()> block) : block_(std::move(block)) {
        QDBusConnection::systemBus().connect(QStringLiteral("org.freedesktop.login1"),
                                             QStringLiteral("/org/freedesktop/login1"),
                                             QStringLiteral("org.freedesktop.login1.Manager"),
                                             QStringLiteral("PrepareForSleep"), this, SLOT(prepareForSleep(bool)));
    }

public slots:
    void prepareForSleep(bool start) {
        if (!start)
            block_();
    }

private:
    std::function<void()> block_;
};

std::unique_ptr<Subscription> QtWorkspace::observeWake(std::function<void()> block) {
    return std::make_unique<WakeObserver>(std::move(block));
}

std::vector<Screen> QtWorkspace::screens() const {
    std::vector<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.push_back(screenOf(*screen));
    return screens;
}

std::optional<Screen> QtWorkspace::mainScreen() const {
    const QWindow* window = QGuiApplication::focusWindow();
    const QScreen* screen = window ? window->screen() : QGuiApplication::primaryScreen();
    return screen ? std::optional(screenOf(*screen)) : std::nullopt;
}

} // namespace vantry

#include "QtWorkspace.moc"
