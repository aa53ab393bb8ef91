#include "platform/linux/hid/HIDSearch.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/common/Udev.h"
#include "platform/linux/hid/HidrawDevice.h"
#include "platform/linux/hid/IIOLidDevice.h"

namespace quorvane {

namespace {

constexpr int appleVendorID = 0x05AC;
constexpr std::chrono::milliseconds longestWait{250};

class UdevHIDFinder final : public HIDFinder {
public:
    explicit UdevHIDFinder(std::filesystem::path sysfs)
        : m_sysfs(std::move(sysfs)), m_context(udev_new()) {
        if (!m_context)
            return;
        // What udev passes on, after it has set the rights of the nodes.
        m_monitor.reset(udev_monitor_new_from_netlink(m_context.get(), "udev"));
        if (m_monitor && !(listensTo("hidraw") && listensTo("iio") &&
                           udev_monitor_enable_receiving(m_monitor.get()) >= 0))
            m_monitor.reset();
    }

    [[nodiscard]] int descriptor() const override {
        return m_monitor ? udev_monitor_get_fd(m_monitor.get()) : -1;
    }

    [[nodiscard]] std::vector<FoundHIDDevice> find() override;

private:
    using UdevMonitor = std::unique_ptr<udev_monitor, ReleasedBy<udev_monitor_unref>>;

    [[nodiscard]] bool listensTo(const char* subsystem) const {
        return udev_monitor_filter_add_match_subsystem_devtype(m_monitor.get(), subsystem,
                                                               nullptr) >= 0;
    }

    std::filesystem::path m_sysfs;
    UdevContext m_context;
    UdevMonitor m_monitor;
};

std::vector<FoundHIDDevice> UdevHIDFinder::find() {
    // Before the devices are listed, or a change in between would be missed.
    while (m_monitor && UdevDevice(udev_monitor_receive_device(m_monitor.get())))
        ;
    std::vector<FoundHIDDevice> found;
    if (m_context)
        for (const HidrawNode& node : nodesOfVendor(listHidrawNodes(*m_context), appleVendorID))
            found.push_back({.name = node.name, .place = node.place, .make = [node] {
                                 return std::make_shared<HidrawDevice>(node.node, node.identity);
                             }});
    for (FoundHIDDevice& lid : findIIOLids(m_sysfs))
        found.push_back(std::move(lid));
    return found;
}

} // namespace

std::unique_ptr<HIDFinder> makeUdevHIDFinder(const std::filesystem::path& sysfs) {
    return std::make_unique<UdevHIDFinder>(sysfs);
}

HIDSearch::HIDSearch(std::unique_ptr<HIDFinder> finder)
    : m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), m_finder(std::move(finder)) {}

std::shared_ptr<HIDSearch> HIDSearch::start(std::unique_ptr<HIDFinder> finder) {
    std::shared_ptr<HIDSearch> search(new HIDSearch(std::move(finder)));
    try {
        std::thread([search] { search->run(); }).detach();
        search->m_runs = true;
    } catch (const std::system_error&) {
        // There are no devices then.
    }
    return search;
}

void HIDSearch::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    wake();
}

std::vector<std::shared_ptr<ThreadedHIDDevice>> HIDSearch::devices() {
    std::unique_lock lock(m_mutex);
    if (m_runs && !m_stopped) {
        if (m_asked == m_answered)
            m_unansweredSince = Clock::now();
        const std::uint64_t wanted = ++m_asked;
        wake();
        m_changed.wait_until(lock, m_unansweredSince + longestWait,
                             [&] { return m_answered >= wanted; });
    }
    return m_list.present();
}

void HIDSearch::run() {
    do
        look();
    while (sleep());
}

void HIDSearch::wake() const {
    eventfd_write(m_wake.get(), 1);
}

bool HIDSearch::sleep() {
    std::array<pollfd, 2> sources{
        pollfd{.fd = m_wake.get(), .events = POLLIN, .revents = 0},
        pollfd{.fd = m_finder->descriptor(), .events = POLLIN, .revents = 0}};
    while (poll(sources.data(), sources.size(), -1) < 0 && errno == EINTR)
        ;
    eventfd_t count = 0;
    eventfd_read(m_wake.get(), &count);
    const std::lock_guard lock(m_mutex);
    return !m_stopped;
}

void HIDSearch::look() {
    std::unique_lock lock(m_mutex);
    const std::uint64_t asked = m_asked;
    lock.unlock();
    const auto found = m_finder->find();
    lock.lock();
    m_list.update(found);
    if (asked != m_answered)
        for (const auto& device : m_list.present())
            device->readAhead();
    m_answered = asked;
    m_changed.notify_all();
}

} // namespace quorvane
