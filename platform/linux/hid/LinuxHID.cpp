#include "platform/linux/hid/LinuxHID.h"

#include <cerrno>
#include <utility>

#include "platform/linux/hid/HIDSearch.h"

namespace quorvane {

namespace {

bool matches(const HIDDevice& device, const HIDMatching& matching) {
    const auto vendor = device.integerProperty("VendorID");
    if (!vendor)
        return !matching.productID;
    return *vendor == matching.vendorID &&
           (!matching.productID || device.integerProperty("ProductID") == matching.productID);
}

class LinuxHIDManager final : public HIDManager {
public:
    explicit LinuxHIDManager(std::shared_ptr<HIDSearch> search) : m_search(std::move(search)) {}

    void setDeviceMatching(const HIDMatching& matching) override { m_matching = matching; }

    /// Nothing to do: threads look for the devices and read them.
    void scheduleWithRunLoop() override {}

    HIDResult open() override {
        m_open = m_search->runs();
        return m_open ? hidSuccess : EAGAIN;
    }

    std::optional<std::vector<std::shared_ptr<HIDDevice>>> copyDevices() override;

    HIDResult close() override {
        m_open = false;
        return hidSuccess;
    }

private:
    std::shared_ptr<HIDSearch> m_search;
    std::optional<HIDMatching> m_matching;
    bool m_open = false;
};

std::optional<std::vector<std::shared_ptr<HIDDevice>>> LinuxHIDManager::copyDevices() {
    if (!m_open || !m_matching)
        return std::nullopt;
    std::vector<std::shared_ptr<HIDDevice>> devices;
    for (auto& device : m_search->devices())
        if (matches(*device, *m_matching))
            devices.push_back(std::move(device));
    return devices;
}

} // namespace

LinuxHID::LinuxHID(const std::filesystem::path& sysfs) : LinuxHID(makeUdevHIDFinder(sysfs)) {}

LinuxHID::LinuxHID(std::unique_ptr<HIDFinder> finder)
    : m_search(HIDSearch::start(std::move(finder))) {}

LinuxHID::~LinuxHID() {
    m_search->stop();
}

std::shared_ptr<HIDManager> LinuxHID::createManager() {
    return std::make_shared<LinuxHIDManager>(m_search);
}

} // namespace quorvane
