#include "platform/simulated/SimulatedHID.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorvane {

namespace {

constexpr HIDResult hidFailure = 1;

SimulatedHIDDevice::Report lidReport(unsigned degrees) {
    return {1, static_cast<std::uint8_t>(degrees & 0xFFU),
            static_cast<std::uint8_t>(degrees >> 8U & 0xFFU)};
}

} // namespace

HIDResult SimulatedHIDDevice::open() {
    if (m_unplugged || refusesOpen || m_faults->fails(Fault::HIDDeviceOpen))
        return hidFailure;
    m_open = true;
    return hidSuccess;
}

HIDResult SimulatedHIDDevice::getReport(HIDReportType type, std::uint8_t reportID,
                                        std::span<std::uint8_t> buffer, std::size_t& length) {
    ++m_readings;
    const std::optional<Report> report = currentReport();
    const bool known = type == HIDReportType::Feature && reportID == 1;
    if (m_unplugged || !m_open || !known || !report || m_faults->fails(Fault::HIDReport))
        return hidFailure;
    length = std::min({length, buffer.size(), report->size()});
    if (m_faults->fails(Fault::HIDReportLength))
        length = std::min(length, std::size_t{2});
    std::copy_n(report->begin(), length, buffer.begin());
    return hidSuccess;
}

std::optional<int> SimulatedHIDDevice::integerProperty(std::string_view key) const {
    if (key == "VendorID")
        return vendorID;
    return key == "ProductID" ? productID : std::nullopt;
}

void SimulatedHIDDevice::setReport(std::optional<Report> report) {
    m_reportAt = [report = std::move(report)](double) { return report; };
}

void SimulatedHIDDevice::setAngle(unsigned degrees) {
    setReport(lidReport(degrees));
}

void SimulatedHIDDevice::setAngle(std::function<double(double time)> degreesAt) {
    m_reportAt = [degreesAt = std::move(degreesAt)](double time) {
        return lidReport(static_cast<unsigned>(std::lround(degreesAt(time))));
    };
}

void SimulatedHIDDevice::setReportAt(int reading, std::optional<Report> report) {
    m_exceptions.emplace_back(reading, std::move(report));
}

std::optional<SimulatedHIDDevice::Report> SimulatedHIDDevice::currentReport() {
    const auto exception =
        std::find_if(m_exceptions.begin(), m_exceptions.end(),
                     [this](const auto& entry) { return entry.first == m_readings; });
    if (exception != m_exceptions.end())
        return exception->second;
    return m_reportAt ? m_reportAt(m_runLoop.currentMediaTime()) : std::nullopt;
}

/// Finds the devices that are plugged in at the time of `copyDevices`.
class SimulatedHIDManager final : public HIDManager {
public:
    explicit SimulatedHIDManager(SimulatedHID& service)
        : m_service(service), m_calls(service.m_calls) {
        m_calls->emplace_back("create");
    }

    ~SimulatedHIDManager() override { m_calls->emplace_back("release"); }

    void setDeviceMatching(const HIDMatching& matching) override {
        std::string call = "match " + std::to_string(matching.vendorID);
        if (matching.productID)
            call += ":" + std::to_string(*matching.productID);
        m_calls->push_back(std::move(call));
        m_matching = matching;
    }

    void scheduleWithRunLoop() override { m_calls->emplace_back("schedule"); }

    HIDResult open() override {
        m_calls->emplace_back("open");
        const bool fails =
            m_service.managerRefusesOpen || m_service.m_faults->fails(Fault::HIDManagerOpen);
        return fails ? hidFailure : hidSuccess;
    }

    std::optional<std::vector<std::shared_ptr<HIDDevice>>> copyDevices() override {
        m_calls->emplace_back("copy");
        if (m_service.copyGivesNoSet || m_service.m_faults->fails(Fault::HIDDeviceSet))
            return std::nullopt;
        std::vector<std::shared_ptr<HIDDevice>> devices;
        for (const auto& device : m_service.m_devices) {
            if (device->isPluggedIn() && matches(*device))
                devices.push_back(device);
        }
        return devices;
    }

    HIDResult close() override {
        m_calls->emplace_back("close");
        return hidSuccess;
    }

private:
    [[nodiscard]] bool matches(const SimulatedHIDDevice& device) const {
        return device.vendorID == m_matching.vendorID &&
               (!m_matching.productID || device.productID == m_matching.productID);
    }

    SimulatedHID& m_service;
    std::shared_ptr<std::vector<std::string>> m_calls;
    HIDMatching m_matching;
};

std::shared_ptr<HIDManager> SimulatedHID::createManager() {
    return std::make_shared<SimulatedHIDManager>(*this);
}

std::shared_ptr<SimulatedHIDDevice> SimulatedHID::addDevice(std::optional<int> productID) {
    auto device = std::make_shared<SimulatedHIDDevice>(m_runLoop, m_faults);
    device->productID = productID;
    m_devices.push_back(device);
    return device;
}

} // namespace quorvane
