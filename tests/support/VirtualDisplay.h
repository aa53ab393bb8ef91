#pragma once

#include <cstdint>
#include <string>
#include <vector>
#include <xcb/xcb.h>

#include "base/NonCopyable.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"

namespace quorvane {

/// An X server with one screen and no clients but this one; DISPLAY names it while this lives.
/// Needs no Qt.
class VirtualDisplay : NonCopyable {
public:
    /// `size` in pixels; `options` are further arguments of Xvfb.
    explicit VirtualDisplay(const std::string& size = "320x200",
                            const std::vector<std::string>& options = {});
    ~VirtualDisplay();

    [[nodiscard]] xcb_connection_t* connection() const { return m_connection; }

    [[nodiscard]] xcb_window_t root() const { return m_root; }

    /// `keycode` is an X keycode of the keymap that the server starts with.
    void press(std::uint8_t keycode);
    void release(std::uint8_t keycode);
    void movePointer(std::int16_t x, std::int16_t y);
    /// Moves the pointer and clicks its left button.
    void click(std::int16_t x, std::int16_t y);
    /// Makes `keycode` carry another symbol.
    void remap(std::uint8_t keycode, xcb_keysym_t symbol);
    /// Sends all keys to this client, as an open menu does.
    void grabKeyboard();

    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
    /// Whether a client owns `selection`, as window managers and compositors do.
    [[nodiscard]] bool hasOwner(const std::string& selection) const;
    [[nodiscard]] xcb_window_t focus() const;
    /// Returns when everything done so far has been sent to every client.
    void sync() const;

    /// Ends the X server, and with it all connections to it.
    void end();

private:
    void sendInput(std::uint8_t type, std::uint8_t detail, std::int16_t x = 0, std::int16_t y = 0);

    ChildProcess m_server;
    EnvironmentVariable m_display;
    xcb_connection_t* m_connection;
    xcb_window_t m_root = XCB_WINDOW_NONE;
};

} // namespace quorvane
