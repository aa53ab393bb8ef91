#include "platform/linux/keyboard/EvdevKeyboard.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
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

/// A keyboard's node may carry a pointer's, a pad's or a remote control's buttons too.
bool isButton(std::size_t code) {
    return (code >= BTN_MISC && code < KEY_OK) || (code >= BTN_DPAD_UP && code < KEY_ALS_TOGGLE) ||
           code >= BTN_TRIGGER_HAPPY;
}

void setMask(int descriptor, std::uint32_t type, const EvdevKeyboard::Keys& codes) {
    std::array<std::uint8_t, (KEY_CNT + 7) / 8> bytes{};
    for (std::size_t code = 0; code < codes.size(); ++code)
        bytes[code / 8] = static_cast<std::uint8_t>(bytes[code / 8] | (codes[code] << (code % 8)));
    input_mask mask{};
    mask.type = type;
    mask.codes_size = static_cast<std::uint32_t>(bytes.size());
    mask.codes_ptr = reinterpret_cast<std::uintptr_t>(bytes.data());
    // Without the mask there are more wake-ups and nothing else.
    static_cast<void>(ioctl(descriptor, EVIOCSMASK, &mask));
}

/// Masks all events of the node but those of keys.
void askForKeysOnly(int descriptor) {
    EvdevKeyboard::Keys types;
    types.set(EV_KEY);
    setMask(descriptor, EV_SYN, types);
    EvdevKeyboard::Keys keys;
    for (std::size_t code = 0; code < keys.size(); ++code)
        keys[code] = !isButton(code);
    setMask(descriptor, EV_KEY, keys);
}

} // namespace

std::unique_ptr<EvdevKeyboard> EvdevKeyboard::open(const std::filesystem::path& node,
                                                   KeyEventReader::Sink sink, KeyQuery query) {
    auto descriptor = FileDescriptor::open(node, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!descriptor)
        return nullptr;
    askForKeysOnly(descriptor.get());
    return std::unique_ptr<EvdevKeyboard>(
        new EvdevKeyboard(std::move(descriptor), std::move(sink), query));
}

EvdevKeyboard::EvdevKeyboard(FileDescriptor descriptor, KeyEventReader::Sink sink, KeyQuery query)
    : m_descriptor(std::move(descriptor)), m_sink(std::move(sink)), m_query(query),
      m_readable(m_descriptor.get(), QSocketNotifier::Read),
      m_down(query(m_descriptor.get()).value_or(Keys())) {
    m_readable.setEnabled(false);
    QObject::connect(&m_readable, &QSocketNotifier::activated, &m_readable,
                     [this] { readEvents(); });
}

void EvdevKeyboard::close() {
    m_readable.setEnabled(false);
    m_descriptor = {};
    m_down.reset();
}

std::optional<EvdevKeyboard::Keys> EvdevKeyboard::keysThatAreDown(int descriptor) {
    std::array<std::uint8_t, (KEY_CNT + 7) / 8> bytes{};
    if (ioctl(descriptor, EVIOCGKEY(bytes.size()), bytes.data()) < 0)
        return std::nullopt;
    Keys keys;
    for (std::size_t key = 0; key < keys.size(); ++key)
        keys[key] = ((bytes[key / 8] >> (key % 8)) & 1) != 0;
    return keys;
}

void EvdevKeyboard::setReading(bool reading) {
    if (reading && !m_delivers)
        readEvents();
    m_delivers = reading;
    m_readable.setEnabled(reading && isOpen());
}

void EvdevKeyboard::readEvents() {
    while (isOpen() && readSome())
        ;
}

/// Whether there may be more.
bool EvdevKeyboard::readSome() {
    auto* bytes = reinterpret_cast<char*>(m_events.data());
    const ssize_t size = read(m_descriptor.get(), bytes + m_partial, sizeof m_events - m_partial);
    if (size < 0 && (errno == EAGAIN || errno == EINTR))
        return false;
    if (size <= 0) {
        close();
        return false;
    }
    const std::size_t total = m_partial + static_cast<std::size_t>(size);
    const std::size_t count = total / sizeof(input_event);
    for (std::size_t i = 0; i < count; ++i)
        handle(m_events[i]);
    m_partial = total % sizeof(input_event);
    std::memmove(bytes, bytes + count * sizeof(input_event), m_partial);
    return true;
}

void EvdevKeyboard::handle(const input_event& event) {
    if (event.type == EV_SYN)
        handleReport(event);
    else if (event.type == EV_KEY && event.code < KEY_CNT && !m_lostEvents)
        handleKey(event.code, event.value);
}

void EvdevKeyboard::handleReport(const input_event& event) {
    // The kernel's buffer overflowed; events up to the next report are incomplete.
    if (event.code == SYN_DROPPED)
        m_lostEvents = true;
    else if (event.code == SYN_REPORT && std::exchange(m_lostEvents, false))
        catchUp();
}

void EvdevKeyboard::catchUp() {
    const auto now = m_query(m_descriptor.get());
    if (!now)
        return;
    // An overflow loses dozens of events. If no key is down before and after it, they cannot all be
    // repeats, so a key was pressed.
    if (m_down.none() && now->none()) {
        deliver({.type = TapEventType::KeyDown});
        deliver({.type = TapEventType::KeyUp});
    }
    for (std::size_t key = 0; key < m_down.size(); ++key)
        if (now->test(key) != m_down.test(key))
            handleKey(key, now->test(key) ? 1 : released);
}

void EvdevKeyboard::handleKey(std::size_t key, int value) {
    const bool isRepeat = value == repeated || (value != released && m_down.test(key));
    m_down.set(key, value != released);
    if (isButton(key))
        return;
    if (isModifier(key)) {
        if (!isRepeat)
            deliver({.type = TapEventType::FlagsChanged});
    } else {
        deliver({.type = value == released ? TapEventType::KeyUp : TapEventType::KeyDown,
                 .keyboardAutorepeat = isRepeat ? 1 : 0});
    }
}

void EvdevKeyboard::deliver(const TapEvent& event) const {
    if (m_delivers)
        m_sink(event);
}

} // namespace quorvane
