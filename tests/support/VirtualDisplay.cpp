#include "tests/support/VirtualDisplay.h"

#include <xcb/xtest.h>

#include <stdexcept>

#include "platform/linux/common/X11Connection.h"

namespace quorvane {

namespace {

std::vector<std::string> serverCommand(const std::string& size,
                                       const std::vector<std::string>& options) {
    std::vector<std::string> command{"Xvfb",       "-displayfd", "1",   "-screen", "0",
                                     size + "x24", "-nolisten",  "tcp", "-noreset"};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

std::string displayOf(const ChildProcess& server) {
    const std::string number = server.line();
    if (number.empty())
        throw std::runtime_error("Xvfb does not start");
    return ":" + number;
}

} // namespace

VirtualDisplay::VirtualDisplay(const std::string& size, const std::vector<std::string>& options)
    : m_server(serverCommand(size, options)), m_display("DISPLAY", displayOf(m_server)),
      m_connection(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(m_connection) != 0)
        throw std::runtime_error("the virtual display does not answer");
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
}

VirtualDisplay::~VirtualDisplay() {
    xcb_disconnect(m_connection);
}

void VirtualDisplay::press(std::uint8_t keycode) {
    sendInput(XCB_KEY_PRESS, keycode);
}

void VirtualDisplay::release(std::uint8_t keycode) {
    sendInput(XCB_KEY_RELEASE, keycode);
}

void VirtualDisplay::movePointer(std::int16_t x, std::int16_t y) {
    sendInput(XCB_MOTION_NOTIFY, 0, x, y);
}

void VirtualDisplay::click(std::int16_t x, std::int16_t y) {
    constexpr std::uint8_t leftButton = 1;
    movePointer(x, y);
    sendInput(XCB_BUTTON_PRESS, leftButton, x, y);
    sendInput(XCB_BUTTON_RELEASE, leftButton, x, y);
}

void VirtualDisplay::sendInput(std::uint8_t type, std::uint8_t detail, std::int16_t x,
                               std::int16_t y) {
    xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, m_root, x, y, 0);
    xcb_flush(m_connection);
}

void VirtualDisplay::remap(std::uint8_t keycode, xcb_keysym_t symbol) {
    xcb_change_keyboard_mapping(m_connection, 1, keycode, 1, &symbol);
    xcb_flush(m_connection);
}

void VirtualDisplay::grabKeyboard() {
    const auto cookie = xcb_grab_keyboard(m_connection, 1, m_root, XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XcbReply<xcb_grab_keyboard_reply_t> reply{
        xcb_grab_keyboard_reply(m_connection, cookie, nullptr)};
    if (!reply || reply->status != XCB_GRAB_STATUS_SUCCESS)
        throw std::runtime_error("the keyboard cannot be grabbed");
}

xcb_atom_t VirtualDisplay::atom(const std::string& name) const {
    const XcbReply<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(
        m_connection,
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr)};
    return reply->atom;
}

bool VirtualDisplay::hasOwner(const std::string& selection) const {
    const XcbReply<xcb_get_selection_owner_reply_t> reply{xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, atom(selection)), nullptr)};
    return reply->owner != XCB_WINDOW_NONE;
}

xcb_window_t VirtualDisplay::focus() const {
    const XcbReply<xcb_get_input_focus_reply_t> reply{
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)};
    return reply ? reply->focus : xcb_window_t{XCB_WINDOW_NONE};
}

void VirtualDisplay::sync() const {
    // The server takes turns with its clients: before it reads a second request of this one it has
    // handled the requests of the others, and sent what the first one led to.
    for (int round = 0; round < 3; ++round)
        static_cast<void>(focus());
}

void VirtualDisplay::end() {
    m_server.end();
}

} // namespace quorvane
