#pragma once

#include <bitset>
#include <cstdint>
#include <xcb/xcb.h>

namespace quorvane {

/// The modifier and lock keys of the X server's current keymap: those in its modifier mapping, and
/// those with such a symbol.
class X11Modifiers {
public:
    /// Queries the server; blocks for the reply.
    void load(xcb_connection_t* connection);

    [[nodiscard]] bool contains(std::uint8_t keycode) const { return m_keycodes.test(keycode); }

private:
    void addMapped(xcb_connection_t* connection);
    void addBySymbol(xcb_connection_t* connection);

    std::bitset<256> m_keycodes;
};

} // namespace quorvane
