#include "platform/linux/instance/FrontWindow.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QWindow>

#include "platform/linux/common/X11Connection.h"

namespace quorvane {

namespace {

/// The X server's time when the person acted, which the id ends with; 0 if it does not.
std::uint32_t timeIn(const std::string& id) {
    constexpr std::string_view mark = "_TIME";
    std::uint32_t time = 0;
    const auto at = id.rfind(mark);
    if (at != std::string::npos)
        std::from_chars(id.data() + at + mark.size(), id.data() + id.size(), time);
    return time;
}

xcb_client_message_event_t message(xcb_window_t window, std::uint8_t format, xcb_atom_t type) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = format;
    event.window = window;
    event.type = type;
    return event;
}

void sendToRoot(const X11Connection& x11, const xcb_client_message_event_t& event,
                std::uint32_t mask) {
    // The protocol sends an event as bytes.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
    xcb_send_event(x11.get(), 0, x11.root(), mask, reinterpret_cast<const char*>(&event));
}

/// Not QWindow::requestActivate: window managers refuse a program that wants the focus for itself.
void activate(const X11Connection& x11, xcb_window_t window, std::uint32_t time) {
    constexpr std::uint32_t askedForByThePerson = 2;
    auto event = message(window, 32, x11.atom("_NET_ACTIVE_WINDOW"));
    event.data.data32[0] = askedForByThePerson;
    event.data.data32[1] = time;
    sendToRoot(x11, event,
               XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
}

/// The desktop shows that a program starts until it is told this. The text goes to the root window
/// with its final 0, 20 bytes at a time.
void endStartup(const X11Connection& x11, const std::string& id) {
    std::string text = "remove: ID=\"";
    for (const char letter : id) {
        if (letter == '"' || letter == '\\')
            text += '\\';
        text += letter;
    }
    text += "\"";
    text += '\0';
    const xcb_window_t sender = xcb_generate_id(x11.get());
    xcb_create_window(x11.get(), XCB_COPY_FROM_PARENT, sender, x11.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    auto event = message(sender, 8, x11.atom("_NET_STARTUP_INFO_BEGIN"));
    for (std::size_t sent = 0; sent < text.size(); sent += sizeof event.data.data8) {
        const std::string part = text.substr(sent, sizeof event.data.data8);
        std::fill(std::begin(event.data.data8), std::end(event.data.data8), std::uint8_t{0});
        std::copy(part.begin(), part.end(), std::begin(event.data.data8));
        sendToRoot(x11, event, XCB_EVENT_MASK_PROPERTY_CHANGE);
        event.type = x11.atom("_NET_STARTUP_INFO");
    }
}

} // namespace

void bringToFront(QWindow& window, const StartupTokens& tokens) {
    window.setWindowStates(window.windowStates() & ~Qt::WindowMinimized);
    window.raise();
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        // Qt takes it from there, once.
        if (!tokens.activation.empty())
            qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(tokens.activation));
        window.requestActivate();
        return;
    }
    const auto x11 = X11Connection::open();
    if (!x11)
        return;
    activate(*x11, static_cast<xcb_window_t>(window.winId()), timeIn(tokens.id));
    if (!tokens.id.empty())
        endStartup(*x11, tokens.id);
    // The X server drops what it has not read when a client disconnects: wait until it has.
    const XcbReply<xcb_get_input_focus_reply_t> reply{
        xcb_get_input_focus_reply(x11->get(), xcb_get_input_focus(x11->get()), nullptr)};
}

} // namespace quorvane
