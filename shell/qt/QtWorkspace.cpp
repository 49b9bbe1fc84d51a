#include "shell/qt/QtWorkspace.h"

#include "platform/ItemFacts.h"
#include "shell/qt/FileUri.h"
#include "shell/qt/QtConversions.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
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

constexpr std::string_view settingsScheme = "x-apple.systempreferences:";
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

void openSettings() {
    static constexpr std::array applications{"gnome-control-center",  "systemsettings",     "xfce4-settings-manager",
                                             "mate-control-center",   "cinnamon-settings",  "lxqt-config",
                                             "budgie-control-center", "ukui-control-center"};
    for (const char* name : applications)
        if (const QString program = QStandardPaths::findExecutable(QString::fromLatin1(name)); !program.isEmpty())
            if (QProcess::startDetached(program, QStringList()))
                return;
}

// Only macOS has applications that are folders.
bool isApplicationBundle(const std::filesystem::path& path) { return path.extension() == ".app"; }

void openInFileManager(const std::filesystem::path& folder) {
    QDesktopServices::openUrl(QUrl::fromEncoded(fileUri(folder), QUrl::StrictMode));
}

// A file manager that has been asked and takes its time may still answer the first question.
bool nobodyWillAnswer(const QDBusError& error) {
    return error.isValid() && error.type() != QDBusError::NoReply && error.type() != QDBusError::Timeout &&
           error.type() != QDBusError::TimedOut;
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
    else if (!url.starts_with(settingsScheme)) // which nothing here can show
        QDesktopServices::openUrl(QUrl(qString(url)));
}

bool QtWorkspace::canOpenURL(const std::string& url) const {
    return url == storageSettingsURL || !url.starts_with(settingsScheme);
}

void QtWorkspace::openSettingsPane(const std::string& url) {
    if (canOpenURL(url))
        openURL(url);
    else
        openSettings();
}

void QtWorkspace::openItem(const std::filesystem::path& path) {
    if (!isApplicationBundle(path))
        openInFileManager(path);
}

bool QtWorkspace::canOpenItem(const std::filesystem::path& path) const {
    return !isApplicationBundle(path) && folderAccess(path) != FolderAccess::none;
}

void QtWorkspace::revealItem(const std::filesystem::path& path) {
    const QString name = QStringLiteral("org.freedesktop.FileManager1");
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openInFileManager(path.parent_path());
        return;
    }
    auto question = QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/FileManager1"), name,
                                                   QStringLiteral("ShowItems"));
    question << QStringList{QString::fromLatin1(fileUri(path))} << QString();
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(question), QCoreApplication::instance());
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer, [answer, folder = path.parent_path()] {
        if (nobodyWillAnswer(answer->error()))
            openInFileManager(folder);
        answer->deleteLater();
    });
}

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
