#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>

struct xcb_connection_t;

namespace vantry {

/// Which kind of tray the desktop has. A StatusNotifierItem host draws an item and its menu by itself and tells no
/// geometry; an XEmbed tray takes a small window of ours.
enum class TrayKind { none, statusNotifier, xembed };

/// Knows whether there is a tray, also one that comes or goes later: the D-Bus name of the StatusNotifierItem watcher,
/// and the owner of the X11 tray selection. Wakes only when one of them changes. Main thread.
class TrayTracker : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    TrayTracker();
    ~TrayTracker() override;

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
