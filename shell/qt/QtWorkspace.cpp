#include "shell/qt/QtWorkspace.h"

#include "shell/qt/QtConversions.h"

#include <QDBusConnection>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QObject>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QUrl>
#include <QWindow>
#include <array>
#include <string_view>
#include <utility>

namespace vantry {

namespace {

Screen screenOf(const QScreen& screen) {
    const QRect frame = screen.geometry();
    return {screen.name().toStdString(),
            {static_cast<double>(frame.x()), static_cast<double>(frame.y()), static_cast<double>(frame.width()),
             static_cast<double>(frame.height())}};
}

constexpr std::string_view storageSettingsURL = "x-apple.systempreferences:com.apple.settings.Storage";

// What desktops have in place of the storage pane: a disk-usage application, then one for disks, else the file manager.
void openDiskUsage() {
    static constexpr std::array<std::pair<const char*, const char*>, 6> applications{{
        {"baobab", "/"},
        {"filelight", "/"},
        {"mate-disk-usage-analyzer", "/"},
        {"qdirstat", "/"},
        {"gnome-disks", nullptr},
        {"partitionmanager", nullptr},
    }};
    for (const auto& [name, argument] : applications)
        if (const QString program = QStandardPaths::findExecutable(QString::fromLatin1(name)); !program.isEmpty())
            if (QProcess::startDetached(program, argument ? QStringList{QString::fromLatin1(argument)} : QStringList()))
                return;
    QDesktopServices::openUrl(QUrl::fromLocalFile(QStringLiteral("/")));
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

void QtWorkspace::openURL(const std::string& url) {
    if (url == storageSettingsURL)
        openDiskUsage();
    else
        QDesktopServices::openUrl(QUrl(qString(url)));
}

bool QtWorkspace::canOpenURL(const std::string& url) const { return url == storageSettingsURL; }

void QtWorkspace::openSettingsPane(const std::string& url) { openURL(url); }

void QtWorkspace::openItem(const std::filesystem::path& path) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(qString(path.native())));
}

bool QtWorkspace::canOpenItem(const std::filesystem::path&) const { return true; }

void QtWorkspace::revealItem(const std::filesystem::path& path) { openItem(path.parent_path()); }

// Applications have no such identifiers here.
std::vector<std::string> QtWorkspace::runningBundleIdentifiers() const { return {}; }

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
