#include "platform/linux/keyboard/UdevKeyboardWatcher.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

namespace quorvane {

namespace {

constexpr auto folder = "/dev/input";
constexpr auto subsystem = "input";
constexpr std::string_view eventPrefix = "event";

/// None if the device is no event node of a keyboard.
std::optional<std::filesystem::path> keyboardNode(udev_device& device) {
    const char* name = udev_device_get_sysname(&device);
    const char* isKeyboard = udev_device_get_property_value(&device, "ID_INPUT_KEYBOARD");
    const char* node = udev_device_get_devnode(&device);
    if (!name || !std::string_view(name).starts_with(eventPrefix) || !isKeyboard ||
        std::string_view(isKeyboard) != "1" || !node)
        return std::nullopt;
    return node;
}

std::vector<std::filesystem::path> listKeyboards(udev& context) {
    return readUdevDevices(context, subsystem, "event*", keyboardNode);
}

} // namespace

std::vector<std::filesystem::path> UdevKeyboardWatcher::list() {
    const UdevContext context{udev_new()};
    return context ? listKeyboards(*context) : std::vector<std::filesystem::path>();
}

void UdevKeyboardWatcher::follow(Visit present, Visit gone) {
    m_present = std::move(present);
    m_gone = std::move(gone);
    m_context.reset(udev_new());
    if (!m_context)
        return;
    // Before the first scan, or a device added in between would be missed.
    startMonitor();
    watchPermissions();
    visitAll();
}

void UdevKeyboardWatcher::visitAll() {
    for (const auto& node : listKeyboards(*m_context))
        m_present(node);
}

void UdevKeyboardWatcher::startMonitor() {
    m_monitor.reset(udev_monitor_new_from_netlink(m_context.get(), "udev"));
    if (!m_monitor)
        return;
    udev_monitor_filter_add_match_subsystem_devtype(m_monitor.get(), subsystem, nullptr);
    if (udev_monitor_enable_receiving(m_monitor.get()) < 0)
        return;
    m_deviceNotifier = std::make_unique<QSocketNotifier>(udev_monitor_get_fd(m_monitor.get()),
                                                         QSocketNotifier::Read);
    QObject::connect(m_deviceNotifier.get(), &QSocketNotifier::activated, m_deviceNotifier.get(),
                     [this] { readDeviceEvent(); });
}

void UdevKeyboardWatcher::watchPermissions() {
    if (!m_inotify) {
        m_inotify = FileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        if (!m_inotify)
            return;
        m_permissionNotifier =
            std::make_unique<QSocketNotifier>(m_inotify.get(), QSocketNotifier::Read);
        QObject::connect(m_permissionNotifier.get(), &QSocketNotifier::activated,
                         m_permissionNotifier.get(), [this] { readPermissionEvents(); });
    }
    // /dev/input does not exist before the first input device.
    m_watchesPermissions = inotify_add_watch(m_inotify.get(), folder, IN_ATTRIB) >= 0;
}

void UdevKeyboardWatcher::readDeviceEvent() {
    errno = 0;
    const UdevDevice device(udev_monitor_receive_device(m_monitor.get()));
    if (!device) {
        // Events were lost. A lost removal does no harm: reading from that node fails.
        if (errno == ENOBUFS)
            visitAll();
        return;
    }
    if (!m_watchesPermissions)
        watchPermissions();
    const auto node = keyboardNode(*device);
    const char* action = udev_device_get_action(device.get());
    if (!node || !action)
        return;
    if (std::string_view(action) == "remove")
        m_gone(*node);
    else
        m_present(*node);
}

void UdevKeyboardWatcher::readPermissionEvents() {
    alignas(inotify_event) std::array<char, 4096> buffer{};
    const ssize_t size = read(m_inotify.get(), buffer.data(), buffer.size());
    for (ssize_t at = 0; at + static_cast<ssize_t>(sizeof(inotify_event)) <= size;) {
        inotify_event event{};
        std::memcpy(&event, &buffer[static_cast<std::size_t>(at)], sizeof event);
        at += static_cast<ssize_t>(sizeof event);
        if (event.len > 0)
            reportKeyboard(&buffer[static_cast<std::size_t>(at)]);
        if ((event.mask & IN_IGNORED) != 0)
            m_watchesPermissions = false;
        at += event.len;
    }
}

void UdevKeyboardWatcher::reportKeyboard(const std::string& name) {
    const UdevDevice device(
        udev_device_new_from_subsystem_sysname(m_context.get(), subsystem, name.c_str()));
    if (!device)
        return;
    if (const auto node = keyboardNode(*device))
        m_present(*node);
}

} // namespace quorvane
