#include "platform/linux/keyboard/reader/KeyEvents.h"

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {

constexpr int released = 0;
constexpr int repeated = 2;

constexpr std::array modifiers{KEY_LEFTSHIFT, KEY_RIGHTSHIFT, KEY_LEFTCTRL, KEY_RIGHTCTRL,
                               KEY_LEFTALT,   KEY_RIGHTALT,   KEY_LEFTMETA, KEY_RIGHTMETA,
                               KEY_CAPSLOCK,  KEY_NUMLOCK,    KEY_FN,       KEY_FN_RIGHT_SHIFT,
                               KEY_SCROLLLOCK};

bool isModifier(std::size_t key) {
    return std::find(modifiers.begin(), modifiers.end(), static_cast<int>(key)) != modifiers.end();
}

} // namespace

bool isButton(std::size_t code) {
    return (code >= BTN_MISC && code < KEY_OK) || (code >= BTN_DPAD_UP && code < KEY_ALS_TOGGLE) ||
           code >= BTN_TRIGGER_HAPPY;
}

KeyEvents::KeyEvents(Query query)
    : m_query(std::move(query)), m_down(m_query().value_or(KeySet())) {}

std::size_t KeyEvents::handle(const input_event& event) {
    if (event.type == EV_SYN)
        return handleReport(event);
    if (event.type == EV_KEY && event.code < KEY_CNT && !m_lostEvents)
        return handleKey(event.code, event.value);
    return 0;
}

std::size_t KeyEvents::handleReport(const input_event& event) {
    // The kernel's buffer overflowed; events up to the next report are incomplete.
    if (event.code == SYN_DROPPED)
        m_lostEvents = true;
    else if (event.code == SYN_REPORT && std::exchange(m_lostEvents, false))
        return catchUp();
    return 0;
}

std::size_t KeyEvents::catchUp() {
    const auto now = m_query();
    if (!now)
        return 0;
    // An overflow loses dozens of events. If no key is down before and after it, they cannot all be
    // repeats, so a key was pressed.
    if (m_down.none() && now->none())
        return 1;
    std::size_t presses = 0;
    for (std::size_t key = 0; key < KEY_CNT; ++key)
        if (now->test(key) != m_down.test(key))
            presses += handleKey(key, now->test(key) ? 1 : released);
    return presses;
}

std::size_t KeyEvents::handleKey(std::size_t key, int value) {
    const bool isPress = value != released && value != repeated && !m_down.test(key);
    m_down.set(key, value != released);
    return isPress && !isButton(key) && !isModifier(key) ? 1 : 0;
}

} // namespace quorvane
