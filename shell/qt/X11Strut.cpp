#include "shell/qt/X11Strut.h"

#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

namespace vantry {

namespace {

constexpr std::string_view strutName = "_NET_WM_STRUT_PARTIAL";
constexpr std::size_t topEdge = 2; // after left and right
constexpr std::size_t topStart = 8;
constexpr std::size_t topEnd = 9;
constexpr std::size_t strutSize = 12;

template <class Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

/// The connection of the application; null outside of X11.
xcb_connection_t* x11Connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_screen_t* screenOf(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name) {
    const Owned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr),
        &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

// The values of a property, empty where there is none.
template <class Value>
std::vector<Value> valuesOf(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property) {
    constexpr std::uint32_t mostWords = 4096;
    const Owned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection,
                               xcb_get_property(connection, 0, window, property, XCB_ATOM_ANY, 0, mostWords), nullptr),
        &std::free);
    if (!reply || reply->format != 8 * sizeof(Value))
        return {};
    std::vector<Value> values(static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof(Value));
    std::memcpy(values.data(), xcb_get_property_value(reply.get()), values.size() * sizeof(Value));
    return values;
}

bool isOmbrels(xcb_connection_t* connection, xcb_window_t window) {
    const auto names = valuesOf<char>(connection, window, XCB_ATOM_WM_CLASS);
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
        strut[topEnd] = static_cast<std::uint32_t>(
            std::min(area.right(), screenOf(connection)->width_in_pixels - 1)); // points are rounded
    }
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window),
                        atomOf(connection, strutName), XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(strut.size()),
                        strut.data());
}

bool isReservedByStrip(int y) {
    xcb_connection_t* connection = x11Connection();
    if (!connection)
        return false;
    const xcb_atom_t strutAtom = atomOf(connection, strutName);
    for (const xcb_window_t window :
         valuesOf<xcb_window_t>(connection, screenOf(connection)->root, atomOf(connection, "_NET_CLIENT_LIST"))) {
        const auto strut = valuesOf<std::uint32_t>(connection, window, strutAtom);
        if (strut.size() == strutSize && std::abs(static_cast<int>(strut[topEdge]) - y) <= 1 &&
            isOmbrels(connection, window))
            return true;
    }
    return false;
}

} // namespace vantry
