#include "platform/ThreadedHID.h"

#include <utility>

#include "platform/ThreadedHIDDevice.h"

namespace quorvane {

namespace {

class ThreadedHIDManager final : public HIDManager {
public:
    explicit ThreadedHIDManager(std::shared_ptr<HIDManager> manager)
        : m_manager(std::move(manager)) {}

    void setDeviceMatching(const HIDMatching& matching) override {
        m_manager->setDeviceMatching(matching);
    }

    void scheduleWithRunLoop() override { m_manager->scheduleWithRunLoop(); }

    HIDResult open() override { return m_manager->open(); }

    std::optional<std::vector<std::shared_ptr<HIDDevice>>> copyDevices() override {
        auto devices = m_manager->copyDevices();
        if (devices)
            for (auto& device : *devices)
                device = std::make_shared<ThreadedHIDDevice>([device] { return device; });
        return devices;
    }

    HIDResult close() override { return m_manager->close(); }

private:
    const std::shared_ptr<HIDManager> m_manager;
};

} // namespace

std::shared_ptr<HIDManager> ThreadedHID::createManager() {
    return std::make_shared<ThreadedHIDManager>(m_service.createManager());
}

} // namespace quorvane
