#include "shell/qt/X11Strut.h"

#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace vantry {

void reserveTopEdge(WId window, const QRect& area) {
    constexpr std::string_view name = "_NET_WM_STRUT_PARTIAL";
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11)
        return;
    xcb_connection_t* connection = x11->connection();
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr),
        &std::free);
    if (!atom)
        return;
    // left, right, top, bottom; then where each of them starts and ends along its edge
    std::array<std::uint32_t, 12> strut{};
    if (!area.isEmpty()) {
        const int width = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->width_in_pixels;
        strut[2] = static_cast<std::uint32_t>(area.bottom() + 1);
        strut[8] = static_cast<std::uint32_t>(area.left());
        strut[9] = static_cast<std::uint32_t>(std::min(area.right(), width - 1)); // points are rounded
    }
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window), atom->atom,
                        XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(strut.size()), strut.data());
}

} // namespace vantry
