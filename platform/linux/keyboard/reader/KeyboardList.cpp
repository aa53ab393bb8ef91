#include "platform/linux/keyboard/reader/KeyboardList.h"

#include <algorithm>
#include <new>
#include <string_view>

namespace quorvane {

namespace {

constexpr auto subsystem = "input";

/// What udev says of devices that it assigns to no other seat.
constexpr auto firstSeat = "seat0";

/// None if the device, an event node, is no keyboard's.
std::optional<KeyboardNode> keyboardNode(udev_device& device) {
    const char* isKeyboard = udev_device_get_property_value(&device, "ID_INPUT_KEYBOARD");
    const char* path = udev_device_get_devnode(&device);
    if (!isKeyboard || std::string_view(isKeyboard) != "1" || !path)
        return std::nullopt;
    const char* seat = udev_device_get_property_value(&device, "ID_SEAT");
    udev_device* parent = udev_device_get_parent(&device);
    return KeyboardNode{
        .path = path,
        .seat = seat ? seat : firstSeat,
        .name = printableName(parent ? udev_device_get_sysattr_value(parent, "name") : nullptr)};
}

} // namespace

std::string printableName(const char* name) {
    std::string text = name ? name : "unnamed";
    std::replace_if(
        text.begin(), text.end(), [](char letter) { return letter < ' ' || letter > '~'; }, '?');
    return text;
}

UdevKeyboardList::UdevKeyboardList() : m_context(udev_new()) {
    if (!m_context)
        throw std::bad_alloc();
    m_monitor.reset(udev_monitor_new_from_netlink(m_context.get(), "udev"));
    if (!m_monitor ||
        udev_monitor_filter_add_match_subsystem_devtype(m_monitor.get(), subsystem, nullptr) < 0 ||
        udev_monitor_enable_receiving(m_monitor.get()) < 0)
        m_monitor.reset();
}

int UdevKeyboardList::descriptor() const {
    return m_monitor ? udev_monitor_get_fd(m_monitor.get()) : -1;
}

std::vector<KeyboardNode> UdevKeyboardList::read() {
    // Before the devices are listed, or a change in between would be missed.
    while (m_monitor && UdevDevice(udev_monitor_receive_device(m_monitor.get())))
        ;
    return readUdevDevices(*m_context, subsystem, "event*", keyboardNode);
}

} // namespace quorvane
