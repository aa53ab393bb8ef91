#include "platform/linux/overlays/X11Monitors.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <xcb/randr.h>

namespace quorvane {

namespace {

// In place of a window the focus may be None (0) or PointerRoot (1).
constexpr xcb_window_t lastNonWindow = XCB_INPUT_FOCUS_POINTER_ROOT;

double scaleAt(QPoint place) {
    // Qt gives a screen's top left corner in pixels, whatever its scale.
    for (const QScreen* screen : QGuiApplication::screens())
        if (screen->geometry().topLeft() == place)
            return screen->devicePixelRatio();
    const QScreen* primary = QGuiApplication::primaryScreen();
    return primary ? primary->devicePixelRatio() : 1;
}

XcbReply<xcb_randr_get_monitors_reply_t> listMonitors(const X11Connection& connection) {
    const auto* extension = xcb_get_extension_data(connection.get(), &xcb_randr_id);
    if (!extension || !extension->present)
        return nullptr;
    const auto cookie =
        xcb_randr_get_monitors(connection.get(), connection.root(), /*get_active=*/1);
    return XcbReply<xcb_randr_get_monitors_reply_t>{
        xcb_randr_get_monitors_reply(connection.get(), cookie, nullptr)};
}

std::optional<QRect> rectOf(const X11Connection& connection, xcb_window_t window) {
    const auto sizeCookie = xcb_get_geometry(connection.get(), window);
    const auto placeCookie =
        xcb_translate_coordinates(connection.get(), window, connection.root(), 0, 0);
    const XcbReply<xcb_get_geometry_reply_t> size{
        xcb_get_geometry_reply(connection.get(), sizeCookie, nullptr)};
    const XcbReply<xcb_translate_coordinates_reply_t> place{
        xcb_translate_coordinates_reply(connection.get(), placeCookie, nullptr)};
    if (!size || !place)
        return std::nullopt;
    return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

xcb_window_t activeWindow(const X11Connection& connection) {
    const auto cookie =
        xcb_get_property(connection.get(), /*_delete=*/0, connection.root(),
                         connection.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 0, 1);
    const XcbReply<xcb_get_property_reply_t> reply{
        xcb_get_property_reply(connection.get(), cookie, nullptr)};
    if (!reply || xcb_get_property_value_length(reply.get()) != sizeof(xcb_window_t))
        return XCB_WINDOW_NONE;
    return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

xcb_window_t inputFocus(const X11Connection& connection) {
    const XcbReply<xcb_get_input_focus_reply_t> reply{xcb_get_input_focus_reply(
        connection.get(), xcb_get_input_focus(connection.get()), nullptr)};
    if (!reply || reply->focus == connection.root())
        return XCB_WINDOW_NONE;
    return reply->focus;
}

std::optional<QRect> focusedRect(const X11Connection& connection) {
    for (const xcb_window_t window : {activeWindow(connection), inputFocus(connection)})
        if (window > lastNonWindow)
            if (const auto rect = rectOf(connection, window))
                return rect;
    return std::nullopt;
}

int area(const QRect& rect) {
    return rect.isEmpty() ? 0 : rect.width() * rect.height();
}

} // namespace

Rect X11Monitor::frame() const {
    return {.x = pixels.x() / scale,
            .y = pixels.y() / scale,
            .width = pixels.width() / scale,
            .height = pixels.height() / scale};
}

std::vector<X11Monitor> x11Monitors(const X11Connection& connection) {
    std::vector<X11Monitor> monitors;
    const auto reply = listMonitors(connection);
    // Without RandR's monitors, the root window is the only one.
    if (!reply) {
        const auto all = rectOf(connection, connection.root()).value_or(QRect());
        monitors.push_back({.primary = true, .pixels = all, .scale = scaleAt(all.topLeft())});
        return monitors;
    }
    for (auto each = xcb_randr_get_monitors_monitors_iterator(reply.get()); each.rem > 0;
         xcb_randr_monitor_info_next(&each)) {
        const QRect pixels(each.data->x, each.data->y, each.data->width, each.data->height);
        monitors.push_back({.name = each.data->name,
                            .primary = each.data->primary != 0,
                            .pixels = pixels,
                            .scale = scaleAt(pixels.topLeft())});
    }
    return monitors;
}

std::optional<X11Monitor> x11MainMonitor(const X11Connection& connection) {
    const std::vector<X11Monitor> monitors = x11Monitors(connection);
    if (monitors.empty())
        return std::nullopt;
    const QRect focused = focusedRect(connection).value_or(QRect());
    // Where the focused window is on none, or equally on two, the primary one wins.
    const auto less = [&focused](const X11Monitor& one, const X11Monitor& other) {
        return std::pair(area(one.pixels & focused), one.primary) <
               std::pair(area(other.pixels & focused), other.primary);
    };
    return *std::max_element(monitors.begin(), monitors.end(), less);
}

} // namespace quorvane
