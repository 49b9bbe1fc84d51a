#include "app/ShellEntry.h"
#include "app/AppDelegate.h"
#include "app/ProcessEvents.h"
#include "app/TerminationSignals.h"
#include "shell/qt/BarWidget.h"
#include "shell/qt/CleanupControls.h"
#include "shell/qt/GuardedApplication.h"
#include "shell/qt/QtMainQueue.h"
#include "shell/qt/QtPreferencesStore.h"
#include "shell/qt/QtShell.h"
#include "shell/qt/QtWorkspace.h"
#include "shell/qt/X11WindowList.h"

#include <QDir>
#include <QIcon>
#include <QLibraryInfo>
#include <QSessionManager>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace vantry {

namespace {

bool x11DisplayAnswers() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

bool waylandCanBeUsed() {
    const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms"));
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
           !plugins.entryList({QStringLiteral("libqwayland-*.so")}).isEmpty();
}

// Checked first, because Qt aborts when it reaches no display. X11 is preferred over Wayland, which does not let the
// strip and the popover choose their places.
bool choosePlatform() {
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return true;
    if (!qEnvironmentVariableIsEmpty("DISPLAY") && x11DisplayAnswers())
        return qputenv("QT_QPA_PLATFORM", "xcb");
    return waylandCanBeUsed() && qputenv("QT_QPA_PLATFORM", "wayland");
}

// Only X11 can list other programs' windows.
std::shared_ptr<const WindowList> windowList() {
    if (QGuiApplication::platformName() != QStringLiteral("xcb"))
        return nullptr;
    return std::make_shared<X11WindowList>(qApp->devicePixelRatio());
}

// Qt calls exit() when it loses the display. A move in progress must stop cleanly then, too.
void terminateAtExit(const std::shared_ptr<ProcessEvents>& events) {
    static std::weak_ptr<ProcessEvents> running;
    running = events;
    std::atexit([] {
        if (const auto target = running.lock())
            target->applicationWillTerminate();
    });
}

// Only "Launch at Login" decides whether Ombrel starts at login, not a session manager that restores programs.
void stayOutOfRestoredSessions() {
    const auto decline = [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); };
    for (const auto request : {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest})
        QObject::connect(qApp, request, qApp, decline, Qt::DirectConnection);
}

int runShell(ShellLaunch launch) {
    if (!choosePlatform()) {
        std::fputs("ombrel: There is no display to show the bar on.\n", stderr);
        return noDisplayStatus;
    }
    int argumentCount = 1;
    char name[] = "ombrel";
    char* argumentValues[] = {name, nullptr};
    QApplication::setDesktopFileName(QStringLiteral("app.ombrel.Ombrel"));
    GuardedApplication application(argumentCount, argumentValues);
    QApplication::setApplicationName(QStringLiteral("ombrel"));
    stayOutOfRestoredSessions();
    installBarAccessibility();
    installCleanupAccessibility();
    QIcon::setFallbackThemeName(QStringLiteral("breeze")); // a bare session sets no icon theme

    const auto mainQueue = std::make_shared<QtMainQueue>();
    QtShell shell;
    const auto delegate = std::make_shared<AppDelegate>(
        shell, makeAppServices(mainQueue, std::make_shared<QtPreferencesStore>(), std::make_shared<QtWorkspace>(),
                               windowList(), std::move(launch.arguments)));
    shell.setDelegate(delegate);
    const auto events = std::make_shared<ProcessEvents>(*mainQueue, shell, delegate, std::move(launch.instance),
                                                        catchTerminationSignals().value_or(-1));
    terminateAtExit(events);
    delegate->applicationDidFinishLaunching();
    const int status = QApplication::exec();
    events->applicationWillTerminate();
    mainQueue->close();
    return status;
}

} // namespace

} // namespace vantry

extern "C" __attribute__((visibility("default"))) int ombrelShellEntry(vantry::ShellLaunch launch) {
    return vantry::runShell(std::move(launch));
}
