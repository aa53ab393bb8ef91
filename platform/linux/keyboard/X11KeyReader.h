#pragma once

#include <bitset>
#include <cstdint>
#include <map>
#include <memory>

#include "platform/linux/common/X11Connection.h"
#include "platform/linux/keyboard/KeyEventReader.h"
#include "platform/linux/keyboard/X11Modifiers.h"

struct xcb_input_hierarchy_event_t;

namespace quorvane {

/// The keys of a whole X11 session: raw key events of every keyboard on the root window, whichever
/// window has the focus or a grab. Any client may select them.
///
/// The server's own repeats cause no raw events. A device that repeats by itself sends presses of a
/// key that is down, so the reader remembers which keys are down.
class X11KeyReader final : public KeyEventReader {
public:
    /// Null if the X server does not answer or lacks XInput 2.1.
    [[nodiscard]] static std::unique_ptr<X11KeyReader> open(Sink sink);

    void setReading(bool reading) override;

private:
    using Keys = std::bitset<256>;

    X11KeyReader(std::unique_ptr<X11Connection> connection, Sink sink);

    bool select();
    void noteKeysThatAreDown();
    void handle(const xcb_generic_event_t& event);
    void handleInput(const xcb_ge_generic_event_t& event);
    void handleKey(std::uint16_t device, std::uint32_t keycode, bool isPress, bool isRepeat);
    void forgetLostDevices(const xcb_input_hierarchy_event_t& event);
    void deliver(TapEventType type, bool isRepeat) const;

    std::unique_ptr<X11Connection> m_connection;
    Sink m_sink;
    std::uint8_t m_inputOpcode = 0;
    X11Modifiers m_modifiers;
    /// By device id.
    std::map<std::uint16_t, Keys> m_down;
    /// Keys that were down before the events were selected, on any device.
    Keys m_downBefore;
    bool m_delivers = false;
};

} // namespace quorvane
