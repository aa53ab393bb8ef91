#pragma once

#include <bitset>
#include <cstdint>
#include <xcb/xcb.h>

namespace quorvane {

/// Which keys do nothing by themselves in the keymap that the X server has now: those of its
/// modifier mapping, and those whose symbol is a modifier's or a lock's.
class X11Modifiers {
public:
    /// Asks the server, and waits for its answer.
    void load(xcb_connection_t* connection);

    [[nodiscard]] bool contains(std::uint8_t keycode) const { return m_keycodes.test(keycode); }

private:
    void addMapped(xcb_connection_t* connection);
    void addBySymbol(xcb_connection_t* connection);

    std::bitset<256> m_keycodes;
};

} // namespace quorvane
