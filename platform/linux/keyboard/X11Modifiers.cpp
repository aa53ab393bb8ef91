#include "platform/linux/keyboard/X11Modifiers.h"

#include <algorithm>
#include <array>

#include "platform/linux/common/X11Connection.h"
#include "platform/linux/common/X11Replies.h"

namespace quorvane {

namespace {

struct SymbolRange {
    xcb_keysym_t first;
    xcb_keysym_t last;
};

// From the protocol's keysym encoding and X.Org's additions to it.
constexpr std::array modifierSymbols{
    SymbolRange{0xFFE1, 0xFFEE},         // Shift_L to Hyper_R, Caps_Lock and Shift_Lock among them
    SymbolRange{0xFE01, 0xFE13},         // ISO_Lock to ISO_Level5_Lock, ISO_Level3_Shift among them
    SymbolRange{0xFF7E, 0xFF7F},         // Mode_switch, Num_Lock
    SymbolRange{0xFF14, 0xFF14},         // Scroll_Lock
    SymbolRange{0x100811D0, 0x100811D0}, // XF86Fn
    SymbolRange{0x100811E5, 0x100811E5}, // XF86FnRightShift
};

bool isModifier(xcb_keysym_t symbol) {
    return std::any_of(modifierSymbols.begin(), modifierSymbols.end(),
                       [symbol](const SymbolRange& range) {
                           return symbol >= range.first && symbol <= range.last;
                       });
}

} // namespace

void X11Modifiers::load(xcb_connection_t* connection) {
    m_keycodes.reset();
    addMapped(connection);
    addBySymbol(connection);
}

void X11Modifiers::addMapped(xcb_connection_t* connection) {
    const XcbReply<xcb_get_modifier_mapping_reply_t> reply{
        xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr)};
    if (!reply)
        return;
    for (const xcb_keycode_t keycode : keycodesOf(*reply))
        if (keycode != 0)
            m_keycodes.set(keycode);
}

void X11Modifiers::addBySymbol(xcb_connection_t* connection) {
    const xcb_setup_t& setup = *xcb_get_setup(connection);
    const auto count = static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
    const XcbReply<xcb_get_keyboard_mapping_reply_t> reply{xcb_get_keyboard_mapping_reply(
        connection, xcb_get_keyboard_mapping(connection, setup.min_keycode, count), nullptr)};
    if (!reply)
        return;
    std::size_t key = setup.min_keycode;
    for (const xcb_keysym_t symbol : plainSymbolsOf(*reply)) {
        if (key < m_keycodes.size() && isModifier(symbol))
            m_keycodes.set(key);
        ++key;
    }
}

} // namespace quorvane
