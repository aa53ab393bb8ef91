#include "platform/linux/hid/LinuxHID.h"

#include <cerrno>
#include <utility>

#include "platform/linux/common/Udev.h"
#include "platform/linux/hid/HidrawDevice.h"
#include "platform/linux/hid/IIOLidDevice.h"

namespace quorvane {

namespace {

class LinuxHIDManager final : public HIDManager {
public:
    explicit LinuxHIDManager(std::filesystem::path sysfs) : m_sysfs(std::move(sysfs)) {}

    void setDeviceMatching(const HIDMatching& matching) override { m_matching = matching; }

    /// Nothing to do: devices are looked up when asked for, and reports are read synchronously.
    void scheduleWithRunLoop() override {}

    HIDResult open() override {
        if (!m_udev)
            m_udev.reset(udev_new());
        return m_udev ? hidSuccess : ENOMEM;
    }

    std::optional<std::vector<std::shared_ptr<HIDDevice>>> copyDevices() override;

    HIDResult close() override {
        m_udev.reset();
        return hidSuccess;
    }

private:
    std::filesystem::path m_sysfs;
    std::optional<HIDMatching> m_matching;
    UdevContext m_udev;
};

std::optional<std::vector<std::shared_ptr<HIDDevice>>> LinuxHIDManager::copyDevices() {
    if (!m_udev || !m_matching)
        return std::nullopt;
    std::vector<std::shared_ptr<HIDDevice>> devices;
    for (auto& found : matchingNodes(listHidrawNodes(*m_udev), *m_matching))
        devices.push_back(std::make_shared<HidrawDevice>(std::move(found.node), found.identity));
    if (!m_matching->productID) {
        for (auto& lid : findIIOLids(m_sysfs))
            devices.push_back(std::move(lid));
    }
    return devices;
}

} // namespace

LinuxHID::LinuxHID(std::filesystem::path sysfs) : m_sysfs(std::move(sysfs)) {}

std::shared_ptr<HIDManager> LinuxHID::createManager() {
    return std::make_shared<LinuxHIDManager>(m_sysfs);
}

} // namespace quorvane
