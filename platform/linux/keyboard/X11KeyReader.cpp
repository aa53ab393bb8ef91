#include "platform/linux/keyboard/X11KeyReader.h"

#include <xcb/xinput.h>

#include <array>
#include <utility>

#include "platform/linux/common/X11Replies.h"

namespace quorvane {

namespace {

/// From version 2.1 on, raw events come while another client has grabbed the keyboard too.
constexpr std::uint16_t majorVersion = 2;
constexpr std::uint16_t minorVersion = 1;

/// One device's event mask, laid out as in the request.
struct EventMask {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
};

bool hasRawEvents(xcb_connection_t* connection) {
    const XcbReply<xcb_input_xi_query_version_reply_t> version{xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, majorVersion, minorVersion), nullptr)};
    return version && std::pair(version->major_version, version->minor_version) >=
                          std::pair(majorVersion, minorVersion);
}

} // namespace

std::unique_ptr<X11KeyReader> X11KeyReader::open(Sink sink) {
    auto connection = X11Connection::open();
    if (!connection)
        return nullptr;
    std::unique_ptr<X11KeyReader> reader(new X11KeyReader(std::move(connection), std::move(sink)));
    if (!reader->select())
        return nullptr;
    reader->noteKeysThatAreDown();
    return reader;
}

X11KeyReader::X11KeyReader(std::unique_ptr<X11Connection> connection, Sink sink)
    : m_connection(std::move(connection)), m_sink(std::move(sink)) {
    m_connection->setReading(false);
    m_connection->setEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
    m_modifiers.load(m_connection->get());
}

bool X11KeyReader::select() {
    xcb_connection_t* connection = m_connection->get();
    const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
    if (!extension || !extension->present || !hasRawEvents(connection))
        return false;
    m_inputOpcode = extension->major_opcode;
    // Selected on the master devices, each event arrives once, with its source device.
    const std::array masks{
        EventMask{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                  XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE},
        EventMask{{XCB_INPUT_DEVICE_ALL, 1}, XCB_INPUT_XI_EVENT_MASK_HIERARCHY}};
    const auto cookie = xcb_input_xi_select_events_checked(
        connection, m_connection->root(), static_cast<std::uint16_t>(masks.size()), &masks[0].head);
    const XcbReply<xcb_generic_error_t> error{xcb_request_check(connection, cookie)};
    return !error && xcb_connection_has_error(connection) == 0;
}

void X11KeyReader::noteKeysThatAreDown() {
    xcb_connection_t* connection = m_connection->get();
    const XcbReply<xcb_query_keymap_reply_t> keymap{
        xcb_query_keymap_reply(connection, xcb_query_keymap(connection), nullptr)};
    for (std::size_t key = 0; keymap && key < m_downBefore.size(); ++key)
        m_downBefore[key] = ((keymap->keys[key / 8] >> (key % 8)) & 1) != 0;
}

void X11KeyReader::setReading(bool reading) {
    if (reading && !m_delivers)
        m_connection->readEvents();
    m_delivers = reading;
    m_connection->setReading(reading);
}

void X11KeyReader::handle(const xcb_generic_event_t& event) {
    const int type = eventType(event);
    if (type == XCB_MAPPING_NOTIFY)
        m_modifiers.load(m_connection->get());
    else if (type == XCB_GE_GENERIC)
        handleInput(reinterpret_cast<const xcb_ge_generic_event_t&>(event));
}

void X11KeyReader::handleInput(const xcb_ge_generic_event_t& event) {
    if (event.extension != m_inputOpcode)
        return;
    if (event.event_type == XCB_INPUT_HIERARCHY) {
        forgetLostDevices(reinterpret_cast<const xcb_input_hierarchy_event_t&>(event));
        return;
    }
    const bool isPress = event.event_type == XCB_INPUT_RAW_KEY_PRESS;
    if (!isPress && event.event_type != XCB_INPUT_RAW_KEY_RELEASE)
        return;
    const auto& key = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
    handleKey(key.sourceid, key.detail, isPress,
              (key.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0);
}

void X11KeyReader::handleKey(std::uint16_t device, std::uint32_t keycode, bool isPress,
                             bool isRepeat) {
    Keys& down = m_down[device];
    if (keycode >= down.size())
        return;
    const bool wasDown = down.test(keycode) || m_downBefore.test(keycode);
    down.set(keycode, isPress);
    if (!isPress)
        m_downBefore.reset(keycode);
    if (m_modifiers.contains(static_cast<std::uint8_t>(keycode))) {
        if (isPress != wasDown)
            deliver(TapEventType::FlagsChanged, false);
    } else if (isPress)
        deliver(TapEventType::KeyDown, isRepeat || wasDown);
    else
        deliver(TapEventType::KeyUp, false);
}

void X11KeyReader::forgetLostDevices(const xcb_input_hierarchy_event_t& event) {
    constexpr std::uint32_t lost = XCB_INPUT_HIERARCHY_MASK_SLAVE_REMOVED |
                                   XCB_INPUT_HIERARCHY_MASK_SLAVE_DETACHED |
                                   XCB_INPUT_HIERARCHY_MASK_DEVICE_DISABLED;
    for (const auto& device : devicesOf(event))
        if ((device.flags & lost) != 0)
            m_down.erase(device.deviceid);
}

void X11KeyReader::deliver(TapEventType type, bool isRepeat) const {
    if (m_delivers)
        m_sink({.type = type, .keyboardAutorepeat = isRepeat ? 1 : 0});
}

} // namespace quorvane
