#include "tests/support/WindowManager.h"

#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/linux/common/X11Connection.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

std::vector<std::string> managerCommand(const std::vector<std::string>& options) {
    std::vector<std::string> command{"openbox"};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

} // namespace

WindowManager::WindowManager(VirtualDisplay& display, const std::vector<std::string>& options)
    : m_display(display), m_process(managerCommand(options)) {
    if (!waitUntil([this] { return isReady(); }))
        throw std::runtime_error("openbox does not start");
}

bool WindowManager::isReady() const {
    // It publishes the list of its windows at the end of its start.
    const XcbReply<xcb_get_property_reply_t> windows{xcb_get_property_reply(
        m_connection,
        xcb_get_property(m_connection, 0, m_display.root(), m_display.atom("_NET_CLIENT_LIST"),
                         XCB_ATOM_WINDOW, 0, 1),
        nullptr)};
    return m_display.hasOwner("WM_S0") && windows && windows->type != XCB_ATOM_NONE;
}

void WindowManager::waitForWindow(xcb_window_t window) {
    const auto isMapped = [&] {
        wake();
        const XcbReply<xcb_get_window_attributes_reply_t> attributes{
            xcb_get_window_attributes_reply(
                m_connection, xcb_get_window_attributes(m_connection, window), nullptr)};
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    };
    if (!waitUntil(isMapped))
        throw std::runtime_error("the window does not come up");
}

/// Sends openbox an event: it may handle events that it read during its start only with the next.
void WindowManager::wake() {
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_display.root(),
                        m_display.atom("WAKE_UP"), XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(m_connection);
}

void WindowManager::activate(xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = m_display.atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 2;
    xcb_send_event(m_connection, 0, m_display.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(m_connection);
    if (!waitUntil([&] { return m_display.focus() == window; }))
        throw std::runtime_error("the window does not get the keyboard");
    // The window may have had it before, and be raised only now.
    sync(window);
}

/// Sets a new title; openbox handles its events in order and publishes the title that it shows.
void WindowManager::sync(xcb_window_t window) {
    const std::string title = "title " + std::to_string(++m_titles);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, static_cast<uint32_t>(title.size()), title.data());
    xcb_flush(m_connection);
    const xcb_atom_t shown = m_display.atom("_NET_WM_VISIBLE_NAME");
    const xcb_atom_t utf8 = m_display.atom("UTF8_STRING");
    const auto isShown = [&] {
        const XcbReply<xcb_get_property_reply_t> reply{xcb_get_property_reply(
            m_connection, xcb_get_property(m_connection, 0, window, shown, utf8, 0, 64), nullptr)};
        return reply &&
               std::string_view(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                static_cast<size_t>(xcb_get_property_value_length(reply.get()))) ==
                   title;
    };
    if (!waitUntil(isShown))
        throw std::runtime_error("openbox does not answer");
}

} // namespace quorvane
