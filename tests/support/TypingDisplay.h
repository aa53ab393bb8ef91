#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <xcb/xcb.h>

#include "base/NonCopyable.h"
#include "tests/support/Environment.h"
#include "tests/support/TestDesktop.h"

namespace quorvane {

/// A virtual display with nothing on it but a person who types; DISPLAY names it for as long as it
/// lives. Needs no toolkit.
class TypingDisplay : NonCopyable {
public:
    TypingDisplay();
    ~TypingDisplay();

    /// By the X server's number of the key, of the keymap that it starts with.
    void press(std::uint8_t keycode);
    void release(std::uint8_t keycode);
    /// Makes `keycode` carry another symbol.
    void remap(std::uint8_t keycode, xcb_keysym_t symbol);
    /// What a menu that is open does: all keys go to it.
    void grabKeyboard();
    /// Returns when whatever was done has been sent to every client.
    void sync() const;

    /// Ends the X server, with all connections to it.
    void end();

private:
    void fake(std::uint8_t type, std::uint8_t keycode);

    std::unique_ptr<TestProgram> m_server;
    std::optional<EnvironmentVariable> m_display;
    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_root = 0;
};

} // namespace quorvane
