#include "platform/linux/overlays/X11Monitors.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cstring>
#include <string>

#include "platform/linux/common/X11Replies.h"

namespace quorvane {

namespace {

// In place of a window the focus may be None (0) or PointerRoot (1).
constexpr xcb_window_t lastNonWindow = XCB_INPUT_FOCUS_POINTER_ROOT;

/// A property of the root window; empty if it is not set.
std::string rootProperty(const X11Connection& connection, xcb_atom_t property, xcb_atom_t type) {
    constexpr uint32_t mostWords = 65536;
    const XcbReply<xcb_get_property_reply_t> reply{
        xcb_get_property_reply(connection.get(),
                               xcb_get_property(connection.get(), /*_delete=*/0, connection.root(),
                                                property, type, 0, mostWords),
                               nullptr)};
    return reply ? std::string(valueOf(*reply)) : std::string();
}

/// Qt's scale factor for the screen, if Qt draws on this X server too.
double scaleAt(const X11Connection& connection, QPoint place) {
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return scaleOf(rootProperty(connection, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING));
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

/// A window's place in the root window; empty if it is gone.
QRect rectOf(const X11Connection& connection, xcb_window_t window) {
    const auto sizeCookie = xcb_get_geometry(connection.get(), window);
    const auto placeCookie =
        xcb_translate_coordinates(connection.get(), window, connection.root(), 0, 0);
    const XcbReply<xcb_get_geometry_reply_t> size{
        xcb_get_geometry_reply(connection.get(), sizeCookie, nullptr)};
    const XcbReply<xcb_translate_coordinates_reply_t> place{
        xcb_translate_coordinates_reply(connection.get(), placeCookie, nullptr)};
    if (!size || !place)
        return {};
    return {place->dst_x, place->dst_y, size->width, size->height};
}

QRect activeWindow(const X11Connection& connection) {
    const std::string value =
        rootProperty(connection, connection.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
    xcb_window_t window = XCB_WINDOW_NONE;
    if (value.size() == sizeof window)
        std::memcpy(&window, value.data(), sizeof window);
    return window == XCB_WINDOW_NONE ? QRect() : rectOf(connection, window);
}

QRect focusedWindow(const X11Connection& connection) {
    const XcbReply<xcb_get_input_focus_reply_t> reply{xcb_get_input_focus_reply(
        connection.get(), xcb_get_input_focus(connection.get()), nullptr)};
    if (!reply || reply->focus <= lastNonWindow || reply->focus == connection.root())
        return {};
    return rectOf(connection, reply->focus);
}

/// The pointer's pixel, if it is in a window: where else it is Xwayland does not know.
QRect pointer(const X11Connection& connection) {
    const XcbReply<xcb_query_pointer_reply_t> reply{xcb_query_pointer_reply(
        connection.get(), xcb_query_pointer(connection.get(), connection.root()), nullptr)};
    if (!reply || reply->child == XCB_WINDOW_NONE)
        return {};
    return {reply->root_x, reply->root_y, 1, 1};
}

qint64 area(const QRect& rect) {
    return rect.isEmpty() ? 0 : qint64{rect.width()} * rect.height();
}

} // namespace

Rect X11Monitor::frame() const {
    return {.x = static_cast<double>(pixels.x()),
            .y = static_cast<double>(pixels.y()),
            .width = pixels.width() / scale,
            .height = pixels.height() / scale};
}

std::vector<X11Monitor> x11Monitors(const X11Connection& connection) {
    std::vector<X11Monitor> monitors;
    const auto reply = listMonitors(connection);
    // Without RandR's monitors, the root window is the only one.
    if (!reply) {
        const auto all = rectOf(connection, connection.root());
        monitors.push_back(
            {.primary = true, .pixels = all, .scale = scaleAt(connection, all.topLeft())});
        return monitors;
    }
    for (const auto& each : monitorsOf(*reply)) {
        const QRect pixels(each.x, each.y, each.width, each.height);
        monitors.push_back({.name = each.name,
                            .primary = each.primary != 0,
                            .pixels = pixels,
                            .scale = scaleAt(connection, pixels.topLeft())});
    }
    return monitors;
}

X11Monitor x11MonitorAt(const X11Connection& connection, const Rect& frame) {
    const QPoint corner(qRound(frame.x), qRound(frame.y));
    X11Monitor at;
    for (const X11Monitor& monitor : x11Monitors(connection)) {
        if (monitor.frame() == frame)
            return monitor;
        if (monitor.pixels.contains(corner))
            at.scale = monitor.scale;
    }
    at.pixels = {corner, QSize(qRound(frame.width * at.scale), qRound(frame.height * at.scale))};
    return at;
}

std::optional<X11Monitor> x11MainMonitor(const X11Connection& connection) {
    const std::vector<X11Monitor> monitors = x11Monitors(connection);
    if (monitors.empty())
        return std::nullopt;
    // The one with most of a rectangle; of two with as much, the primary one.
    const auto best = [&monitors](const QRect& rect) {
        return *std::max_element(monitors.begin(), monitors.end(),
                                 [&rect](const auto& one, const auto& other) {
                                     return std::pair(area(one.pixels & rect), one.primary) <
                                            std::pair(area(other.pixels & rect), other.primary);
                                 });
    };
    for (const auto find : {activeWindow, focusedWindow, pointer}) {
        const QRect rect = find(connection);
        const X11Monitor monitor = best(rect);
        // Window managers give the keyboard to windows outside of all monitors, for "none".
        if (monitor.pixels.intersects(rect))
            return monitor;
    }
    return best({});
}

} // namespace quorvane
