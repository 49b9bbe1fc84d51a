#include "shell/qt/TrayTracker.h"

#include "shell/qt/X11Replies.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <cstdlib>
#include <xcb/xfixes.h>

namespace vantry {

namespace {

const auto watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");

// A bus that does not answer must not delay the start.
constexpr int answerTimeoutMilliseconds = 500;

} // namespace

TrayTracker::TrayTracker() {
    watchNotifierHost();
    watchTraySelection();
}

TrayKind TrayTracker::kind() const {
    if (notifierHost_)
        return TrayKind::statusNotifier;
    return traySelectionOwned_ ? TrayKind::xembed : TrayKind::none;
}

void TrayTracker::watchNotifierHost() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    auto* watcher = new QDBusServiceWatcher(watcherService, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayTracker::readNotifierHost);
    for (const auto* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus.connect(watcherService, watcherPath, watcherService, QString::fromLatin1(signal), this,
                    SLOT(readNotifierHost()));
    readNotifierHost();
}

void TrayTracker::readNotifierHost() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.interface()->isServiceRegistered(watcherService)) {
        setNotifierHost(false);
        return;
    }
    auto question = QDBusMessage::createMethodCall(
        watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    const QDBusReply<QDBusVariant> answer = bus.call(question, QDBus::Block, answerTimeoutMilliseconds);
    setNotifierHost(answer.isValid() && answer.value().variant().toBool());
}

void TrayTracker::watchTraySelection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11)
        return;
    connection_ = x11->connection();
    // The tray selection of the default screen, whose number is the last part of the display name.
    char* host = nullptr;
    int displayNumber = 0;
    int screenNumber = 0;
    if (xcb_parse_display(nullptr, &host, &displayNumber, &screenNumber) != 0)
        std::free(host);
    const QByteArray name = "_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber);
    traySelection_ = x11Atom(connection_, name.toStdString());
    const auto* xfixes = xcb_get_extension_data(connection_, &xcb_xfixes_id);
    if (traySelection_ == XCB_ATOM_NONE || !xfixes || !xfixes->present)
        return;
    firstXfixesEvent_ = xfixes->first_event;

    const X11Reply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        connection_, xcb_xfixes_query_version(connection_, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION),
        nullptr));
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    xcb_xfixes_select_selection_input(connection_, root, traySelection_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const X11Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection_, xcb_get_selection_owner(connection_, traySelection_), nullptr));
    traySelectionOwned_ = owner && owner->owner != XCB_NONE;
    qGuiApp->installNativeEventFilter(this);
}

bool TrayTracker::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != firstXfixesEvent_ + XCB_XFIXES_SELECTION_NOTIFY)
        return false;
    const auto* notification = reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event);
    if (notification->selection == traySelection_)
        setTraySelectionOwned(notification->subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER &&
                              notification->owner != XCB_NONE);
    return false;
}

void TrayTracker::setNotifierHost(bool present) {
    if (std::exchange(notifierHost_, present) != present)
        emit changed();
}

void TrayTracker::setTraySelectionOwned(bool owned) {
    if (std::exchange(traySelectionOwned_, owned) != owned)
        emit changed();
}

} // namespace vantry
