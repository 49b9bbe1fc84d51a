#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

namespace vantry {

struct X11Free {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: xcb allocates its replies with malloc
};
/// A reply of the X server; null on an error.
template <class Reply>
using X11Reply = std::unique_ptr<Reply, X11Free>;

[[nodiscard]] inline xcb_atom_t x11Atom(xcb_connection_t* connection, std::string_view name) {
    const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// The values of a window's property; empty if it is missing or its values have another width.
template <class Value>
[[nodiscard]] std::vector<Value> x11Values(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property) {
    constexpr std::uint32_t mostWords = 4096;
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, mostWords),
        nullptr));
    if (!reply || reply->format != 8 * sizeof(Value))
        return {};
    std::vector<Value> values(static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof(Value));
    std::memcpy(values.data(), xcb_get_property_value(reply.get()), values.size() * sizeof(Value));
    return values;
}

} // namespace vantry
