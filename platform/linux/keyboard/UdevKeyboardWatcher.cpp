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
    // Before the list is taken, or what comes in between would be missed.
    startMonitor();
    watchRights();
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
    m_news = std::make_unique<QSocketNotifier>(udev_monitor_get_fd(m_monitor.get()),
                                               QSocketNotifier::Read);
    QObject::connect(m_news.get(), &QSocketNotifier::activated, m_news.get(),
                     [this] { readNews(); });
}

void UdevKeyboardWatcher::watchRights() {
    if (!m_rightsDescriptor) {
        m_rightsDescriptor = FileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        if (!m_rightsDescriptor)
            return;
        m_rights =
            std::make_unique<QSocketNotifier>(m_rightsDescriptor.get(), QSocketNotifier::Read);
        QObject::connect(m_rights.get(), &QSocketNotifier::activated, m_rights.get(),
                         [this] { readRights(); });
    }
    // The folder itself comes with the machine's first input device.
    m_watchesRights = inotify_add_watch(m_rightsDescriptor.get(), folder, IN_ATTRIB) >= 0;
}

void UdevKeyboardWatcher::readNews() {
    errno = 0;
    const UdevDevice device(udev_monitor_receive_device(m_monitor.get()));
    if (!device) {
        // News were lost; those of keyboards that went are not needed.
        if (errno == ENOBUFS)
            visitAll();
        return;
    }
    if (!m_watchesRights)
        watchRights();
    const auto node = keyboardNode(*device);
    const char* action = udev_device_get_action(device.get());
    if (!node || !action)
        return;
    if (std::string_view(action) == "remove")
        m_gone(*node);
    else
        m_present(*node);
}

void UdevKeyboardWatcher::readRights() {
    alignas(inotify_event) std::array<char, 4096> buffer{};
    const ssize_t size = read(m_rightsDescriptor.get(), buffer.data(), buffer.size());
    for (ssize_t at = 0; at + static_cast<ssize_t>(sizeof(inotify_event)) <= size;) {
        inotify_event event{};
        std::memcpy(&event, &buffer[static_cast<std::size_t>(at)], sizeof event);
        at += static_cast<ssize_t>(sizeof event);
        if (event.len > 0)
            consider(&buffer[static_cast<std::size_t>(at)]);
        if ((event.mask & IN_IGNORED) != 0)
            m_watchesRights = false;
        at += event.len;
    }
}

void UdevKeyboardWatcher::consider(const std::string& name) {
    const UdevDevice device(
        udev_device_new_from_subsystem_sysname(m_context.get(), subsystem, name.c_str()));
    if (!device)
        return;
    if (const auto node = keyboardNode(*device))
        m_present(*node);
}

} // namespace quorvane
