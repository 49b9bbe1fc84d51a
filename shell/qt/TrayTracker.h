#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>

struct xcb_connection_t;

namespace vantry {

/// The kind of tray that the desktop has. A StatusNotifierItem host draws the item and its menu itself and does not
/// report a geometry; an XEmbed tray embeds a small window of ours.
enum class TrayKind { none, statusNotifier, xembed };

/// Watches whether there is a tray, by the D-Bus name of the StatusNotifierItem watcher and the owner of the X11 tray
/// selection. Does not poll. Main thread.
class TrayTracker : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    TrayTracker();

    [[nodiscard]] TrayKind kind() const;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

signals:
    void changed();

private slots:
    void readNotifierHost();

private:
    void watchNotifierHost();
    void watchTraySelection();
    void setNotifierHost(bool present);
    void setTraySelectionOwned(bool owned);

    bool notifierHost_ = false;
    bool traySelectionOwned_ = false;
    xcb_connection_t* connection_ = nullptr;
    std::uint32_t traySelection_ = 0;
    std::uint8_t firstXfixesEvent_ = 0;
};

} // namespace vantry
