#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/HID.h"
#include "platform/RunLoop.h"
#include "platform/simulated/Faults.h"

namespace quorvane {

/// A HID device with scripted reports. Plugged in until `unplug`.
class SimulatedHIDDevice final : public HIDDevice {
public:
    using Report = std::vector<std::uint8_t>;

    explicit SimulatedHIDDevice(RunLoop& runLoop,
                                std::shared_ptr<Faults> faults = std::make_shared<Faults>())
        : m_runLoop(runLoop), m_faults(std::move(faults)) {}

    HIDResult open() override;
    HIDResult getReport(HIDReportType type, std::uint8_t reportID, std::span<std::uint8_t> buffer,
                        std::size_t& length) override;
    [[nodiscard]] std::optional<int> integerProperty(std::string_view key) const override;

    int vendorID = 0x05AC;
    /// None: the device has no such property.
    std::optional<int> productID;
    /// Fault: opening fails.
    bool refusesOpen = false;

    /// The feature report from now on; none: reading it fails.
    void setReport(std::optional<Report> report);
    /// Feature report 1 of a lid at `degrees` (0 to 65535): report ID, low byte, high byte.
    void setAngle(unsigned degrees);
    /// A moving lid: the report contains the angle at the media time of each reading, rounded.
    void setAngle(std::function<double(double time)> degreesAt);
    /// The report of the reading number `reading`, counted from 1, instead of the current one.
    void setReportAt(int reading, std::optional<Report> report);

    /// From now on every call fails.
    void unplug() { m_unplugged = true; }

    [[nodiscard]] bool isPluggedIn() const { return !m_unplugged; }

    [[nodiscard]] bool isOpen() const { return m_open; }

    /// Number of readings so far, including failed ones.
    [[nodiscard]] int readings() const { return m_readings; }

private:
    [[nodiscard]] std::optional<Report> currentReport();

    RunLoop& m_runLoop;
    std::shared_ptr<Faults> m_faults;
    std::function<std::optional<Report>(double time)> m_reportAt;
    std::vector<std::pair<int, std::optional<Report>>> m_exceptions;
    int m_readings = 0;
    bool m_open = false;
    bool m_unplugged = false;
};

/// The devices of a simulated machine, and a record of the calls of its managers.
class SimulatedHID final : public HIDService {
public:
    explicit SimulatedHID(RunLoop& runLoop,
                          std::shared_ptr<Faults> faults = std::make_shared<Faults>())
        : m_runLoop(runLoop), m_faults(std::move(faults)) {}

    std::shared_ptr<HIDManager> createManager() override;

    /// Adds a device of vendor 0x05AC; devices are found in the order of adding.
    std::shared_ptr<SimulatedHIDDevice> addDevice(std::optional<int> productID);

    /// Faults.
    bool managerRefusesOpen = false;
    bool copyGivesNoSet = false;

    /// The calls of all managers, in order: "create", "match 1452:33028" or "match 1452",
    /// "schedule", "open", "copy", "close", "release".
    [[nodiscard]] const std::vector<std::string>& calls() const { return *m_calls; }

    void forgetCalls() { m_calls->clear(); }

private:
    friend class SimulatedHIDManager;

    RunLoop& m_runLoop;
    std::shared_ptr<Faults> m_faults;
    std::vector<std::shared_ptr<SimulatedHIDDevice>> m_devices;
    // Shared with the managers, which may outlive the service.
    std::shared_ptr<std::vector<std::string>> m_calls =
        std::make_shared<std::vector<std::string>>();
};

} // namespace quorvane
