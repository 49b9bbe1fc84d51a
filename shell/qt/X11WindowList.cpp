#include "shell/qt/X11WindowList.h"

#include "shell/qt/X11Replies.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vantry {

namespace {

constexpr int mostDepth = 3; // a frame, the window, and a player's window inside it

class Display {
public:
    Display() : connection_(xcb_connect(nullptr, nullptr)) {}
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    ~Display() { xcb_disconnect(connection_); }

    [[nodiscard]] bool isOpen() const { return xcb_connection_has_error(connection_) == 0; }

    [[nodiscard]] std::vector<xcb_window_t> roots() const {
        std::vector<xcb_window_t> roots;
        for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)); screen.rem > 0;
             xcb_screen_next(&screen))
            roots.push_back(screen.data->root);
        return roots;
    }

    // Bottom to top.
    [[nodiscard]] std::vector<xcb_window_t> children(xcb_window_t window) const {
        const X11Reply<xcb_query_tree_reply_t> reply(
            xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
        if (!reply)
            return {};
        const xcb_window_t* first = xcb_query_tree_children(reply.get());
        return {first, first + xcb_query_tree_children_length(reply.get())};
    }

    [[nodiscard]] bool isShown(xcb_window_t window) const {
        const X11Reply<xcb_get_window_attributes_reply_t> reply(
            xcb_get_window_attributes_reply(connection_, xcb_get_window_attributes(connection_, window), nullptr));
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    [[nodiscard]] std::optional<Rect> bounds(xcb_window_t window, xcb_window_t root) const {
        const X11Reply<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
        const X11Reply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
            connection_, xcb_translate_coordinates(connection_, window, root, 0, 0), nullptr));
        if (!size || !place)
            return std::nullopt;
        return Rect{static_cast<double>(place->dst_x), static_cast<double>(place->dst_y),
                    static_cast<double>(size->width), static_cast<double>(size->height)};
    }

    [[nodiscard]] std::vector<std::uint32_t> values(xcb_window_t window, std::string_view property) const {
        return x11Values<std::uint32_t>(connection_, window, atom(property));
    }

    // The class in WM_CLASS, the second of its two zero-terminated strings.
    [[nodiscard]] std::string ownerName(xcb_window_t window) const {
        const auto letters = x11Values<char>(connection_, window, XCB_ATOM_WM_CLASS);
        const std::string_view texts(letters.data(), letters.size());
        const auto second = texts.find('\0') + 1;
        return second == 0 || second > texts.size()
                   ? std::string()
                   : std::string(texts.substr(second, texts.find('\0', second) - second));
    }

    [[nodiscard]] xcb_atom_t atom(std::string_view name) const {
        const auto known = atoms_.find(name);
        if (known != atoms_.end())
            return known->second;
        return atoms_[std::string(name)] = x11Atom(connection_, name);
    }

private:
    xcb_connection_t* connection_; ///< never null
    mutable std::map<std::string, xcb_atom_t, std::less<>> atoms_;
};

/// Finds the windows of type "desktop" below a root, and the processes that own them and their children.
class DesktopWindows {
public:
    DesktopWindows(Display& display, xcb_window_t root, double scale) : display_(display), root_(root), scale_(scale) {}

    [[nodiscard]] std::vector<WindowInfo> find() {
        look(root_, mostDepth);
        std::ranges::reverse(found_); // frontmost first
        return std::move(found_);
    }

private:
    void look(xcb_window_t parent, int depth) {
        for (const xcb_window_t window : display_.children(parent))
            if (isOfDesktop(window))
                add(window);
            else if (depth > 1)
                look(window, depth - 1); // window managers put windows into frames
    }

    [[nodiscard]] bool isOfDesktop(xcb_window_t window) {
        const auto types = display_.values(window, "_NET_WM_WINDOW_TYPE");
        const auto desktop = display_.atom("_NET_WM_WINDOW_TYPE_DESKTOP");
        return desktop != XCB_ATOM_NONE && std::ranges::count(types, desktop) != 0 && display_.isShown(window);
    }

    void add(xcb_window_t window) {
        auto bounds = display_.bounds(window, root_);
        if (!bounds)
            return;
        *bounds = {bounds->x / scale_, bounds->y / scale_, bounds->width / scale_, bounds->height / scale_};
        addOwner(window, *bounds);
        for (const xcb_window_t inside : display_.children(window)) // for instance a player that plays in the window
            addOwner(inside, *bounds);
    }

    void addOwner(xcb_window_t window, const Rect& bounds) {
        const auto process = display_.values(window, "_NET_WM_PID");
        if (!process.empty())
            found_.push_back({display_.ownerName(window), static_cast<int>(process.front()), bounds, 0});
    }

    Display& display_;
    xcb_window_t root_;
    double scale_;
    std::vector<WindowInfo> found_;
};

} // namespace

std::vector<WindowInfo> X11WindowList::onScreenWindows() const {
    Display display;
    std::vector<WindowInfo> windows;
    if (display.isOpen())
        for (const xcb_window_t root : display.roots())
            std::ranges::move(DesktopWindows(display, root, scale_).find(), std::back_inserter(windows));
    return windows;
}

} // namespace vantry
