#include "shell/qt/QtWorkspace.h"

#include "base/Text.h"
#include "platform/ItemFacts.h"
#include "shell/qt/QtConversions.h"

#include <QClipboard>
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
#include <algorithm>
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

// Starts the first of these programs that is installed.
bool startOneOf(const QString& programs, const QStringList& arguments) {
    return std::ranges::any_of(programs.split(u' '), [&](const QString& name) {
        const QString program = QStandardPaths::findExecutable(name);
        return !program.isEmpty() && QProcess::startDetached(program, arguments);
    });
}

// Instead of the storage pane: a disk-usage application, else a disk utility, else the file manager.
void openDiskUsage() {
    const QString root = QStringLiteral("/");
    if (!startOneOf(QStringLiteral("baobab filelight mate-disk-usage-analyzer qdirstat"), {root}) &&
        !startOneOf(QStringLiteral("gnome-disks partitionmanager"), {}))
        QDesktopServices::openUrl(QUrl::fromLocalFile(root));
}

void openSettings() {
    startOneOf(QStringLiteral("gnome-control-center systemsettings xfce4-settings-manager mate-control-center "
                              "cinnamon-settings lxqt-config budgie-control-center ukui-control-center"),
               {});
}

// Application bundles exist only on macOS.
bool isApplicationBundle(const std::filesystem::path& path) { return path.extension() == ".app"; }

void openInFileManager(const std::filesystem::path& folder) {
    QDesktopServices::openUrl(QUrl::fromEncoded(fileUri(folder), QUrl::StrictMode));
}

// After a timeout the file manager may still show the file, so a timeout does not count.
bool nobodyWillAnswer(const QDBusError& error) {
    return error.isValid() && error.type() != QDBusError::NoReply && error.type() != QDBusError::Timeout &&
           error.type() != QDBusError::TimedOut;
}

} // namespace

QByteArray fileUri(const std::filesystem::path& path) {
    return QByteArray::fromStdString("file://" + percentEncoded(path.native()));
}

/// logind announces both sleep and wake; only wake counts.
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
    else if (!url.starts_with(settingsScheme)) // no desktop can show the other panes
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

void QtWorkspace::copyText(const std::string& text) { QGuiApplication::clipboard()->setText(qString(text)); }

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

// There are no bundle identifiers on Linux.
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
