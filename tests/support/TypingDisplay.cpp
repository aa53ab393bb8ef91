#include "tests/support/TypingDisplay.h"

#include <xcb/xtest.h>

#include <cstdlib>
#include <stdexcept>

namespace quorvane {

TypingDisplay::TypingDisplay()
    : m_server(std::make_unique<TestProgram>(
          std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0", "320x200x24",
                                   "-nolisten", "tcp", "-noreset"})) {
    const std::string number = m_server->line();
    if (number.empty())
        throw std::runtime_error("Xvfb does not start");
    m_display.emplace("DISPLAY", ":" + number);
    m_connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(m_connection) != 0)
        throw std::runtime_error("the virtual display does not answer");
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
}

TypingDisplay::~TypingDisplay() {
    xcb_disconnect(m_connection);
}

void TypingDisplay::press(std::uint8_t keycode) {
    fake(XCB_KEY_PRESS, keycode);
}

void TypingDisplay::release(std::uint8_t keycode) {
    fake(XCB_KEY_RELEASE, keycode);
}

void TypingDisplay::fake(std::uint8_t type, std::uint8_t keycode) {
    xcb_test_fake_input(m_connection, type, keycode, XCB_CURRENT_TIME, m_root, 0, 0, 0);
    xcb_flush(m_connection);
}

void TypingDisplay::remap(std::uint8_t keycode, xcb_keysym_t symbol) {
    xcb_change_keyboard_mapping(m_connection, 1, keycode, 1, &symbol);
    xcb_flush(m_connection);
}

void TypingDisplay::grabKeyboard() {
    const auto cookie = xcb_grab_keyboard(m_connection, 1, m_root, XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    auto* reply = xcb_grab_keyboard_reply(m_connection, cookie, nullptr);
    const bool isGrabbed = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    std::free(reply); // NOLINT: the library's allocation.
    if (!isGrabbed)
        throw std::runtime_error("the keyboard cannot be grabbed");
}

void TypingDisplay::sync() const {
    // Before it reads a second request the server has sent what the first one led to, to everybody.
    for (int round = 0; round < 3; ++round) {
        const auto cookie = xcb_get_input_focus(m_connection);
        std::free(xcb_get_input_focus_reply(m_connection, cookie, nullptr)); // NOLINT: as above.
    }
}

void TypingDisplay::end() {
    m_server->end();
}

} // namespace quorvane
