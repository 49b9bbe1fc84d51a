#include "shell/qt/X11Strut.h"

#include "shell/qt/X11Replies.h"

#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace vantry {

namespace {

constexpr std::string_view strutName = "_NET_WM_STRUT_PARTIAL";
constexpr std::size_t topEdge = 2; // the order is left, right, top, bottom
constexpr std::size_t topStart = 8;
constexpr std::size_t topEnd = 9;
constexpr std::size_t strutSize = 12;

/// The application's connection; null outside X11.
xcb_connection_t* x11Connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_screen_t* screenOf(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

bool isOmbrels(xcb_connection_t* connection, xcb_window_t window) {
    const auto names = x11Values<char>(connection, window, XCB_ATOM_WM_CLASS);
    return std::string_view(names.data(), names.size()).starts_with("ombrel");
}

} // namespace

void reserveTopEdge(WId window, const QRect& area) {
    xcb_connection_t* connection = x11Connection();
    if (!connection)
        return;
    std::array<std::uint32_t, strutSize> strut{};
    if (!area.isEmpty()) {
        strut[topEdge] = static_cast<std::uint32_t>(area.bottom() + 1);
        strut[topStart] = static_cast<std::uint32_t>(area.left());
        strut[topEnd] = static_cast<std::uint32_t>(std::min(
            area.right(), screenOf(connection)->width_in_pixels - 1)); // rounding may exceed the screen by a pixel
    }
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window),
                        x11Atom(connection, strutName), XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(strut.size()),
                        strut.data());
}

bool isReservedByStrip(int y) {
    xcb_connection_t* connection = x11Connection();
    if (!connection)
        return false;
    const xcb_atom_t strutAtom = x11Atom(connection, strutName);
    for (const xcb_window_t window :
         x11Values<xcb_window_t>(connection, screenOf(connection)->root, x11Atom(connection, "_NET_CLIENT_LIST"))) {
        const auto strut = x11Values<std::uint32_t>(connection, window, strutAtom);
        if (strut.size() == strutSize && std::abs(static_cast<int>(strut[topEdge]) - y) <= 1 &&
            isOmbrels(connection, window))
            return true;
    }
    return false;
}

} // namespace vantry
