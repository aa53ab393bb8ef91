#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/ThreadedHIDDevice.h"

namespace quorvane {

/// What the devices that it makes do, and what they were asked. Any thread.
struct FakeHIDHardware {
    std::atomic<int> angle = 112;
    std::atomic<std::chrono::milliseconds> answersAfter{std::chrono::milliseconds{0}};
    std::atomic<HIDResult> openResult = hidSuccess;
    std::atomic<HIDResult> readResult = hidSuccess;
    std::atomic<int> vendorID = 0x05AC;
    std::atomic<int> productID = 0x8104;

    std::atomic<int> openings = 0;
    std::atomic<int> readings = 0;
    /// Devices that are open.
    std::atomic<int> open = 0;
    /// The time of the last answer, in steady_clock ticks.
    std::atomic<std::chrono::steady_clock::time_point> answered{};

    /// While a device is stuck, its openings and readings do not return.
    void setStuck(bool stuck) {
        const std::lock_guard lock(m_mutex);
        m_stuck = stuck;
        m_changed.notify_all();
    }

    void passWhenNotStuck() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_stuck; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_stuck = false;
};

/// A device that blocks its caller as a kernel's does.
class FakeHIDDevice final : public HIDDevice {
public:
    explicit FakeHIDDevice(std::shared_ptr<FakeHIDHardware> hardware)
        : m_hardware(std::move(hardware)) {}

    ~FakeHIDDevice() override { m_hardware->open -= m_isOpen; }

    static ThreadedHIDDevice::Make maker(std::shared_ptr<FakeHIDHardware> hardware) {
        return
            [hardware = std::move(hardware)] { return std::make_shared<FakeHIDDevice>(hardware); };
    }

    HIDResult open() override {
        m_hardware->passWhenNotStuck();
        ++m_hardware->openings;
        const HIDResult result = m_hardware->openResult;
        m_isOpen = result == hidSuccess;
        m_hardware->open += m_isOpen;
        return result;
    }

    HIDResult getReport(HIDReportType /*type*/, std::uint8_t reportID,
                        std::span<std::uint8_t> buffer, std::size_t& length) override {
        ++m_hardware->readings;
        std::this_thread::sleep_for(m_hardware->answersAfter.load());
        m_hardware->passWhenNotStuck();
        const int angle = m_hardware->angle;
        buffer[0] = reportID;
        buffer[1] = static_cast<std::uint8_t>(angle & 0xFF);
        buffer[2] = static_cast<std::uint8_t>(angle >> 8);
        length = 3;
        m_hardware->answered = std::chrono::steady_clock::now();
        return m_hardware->readResult;
    }

    [[nodiscard]] std::optional<int> integerProperty(std::string_view key) const override {
        return key == "VendorID" ? m_hardware->vendorID : m_hardware->productID;
    }

private:
    const std::shared_ptr<FakeHIDHardware> m_hardware;
    bool m_isOpen = false;
};

/// The angle in feature report 1; minus the error if it cannot be read.
inline int readAngle(HIDDevice& device) {
    std::array<std::uint8_t, 8> report{};
    std::size_t length = report.size();
    const HIDResult result = device.getReport(HIDReportType::Feature, 1, report, length);
    return result == hidSuccess ? report[1] | report[2] << 8 : -result;
}

} // namespace quorvane
