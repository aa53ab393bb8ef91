#pragma once

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "platform/HID.h"
#include "tests/contract/Contract.h"

namespace quorvane {

/// An implementation of HID, and its one lid sensor.
class HIDBackend : public ContractBackend {
public:
    virtual HIDService& service() = 0;

    /// The vendor by which the sensor is found.
    [[nodiscard]] virtual int vendorID() const { return 0x05AC; }

    /// The sensor's product property.
    [[nodiscard]] virtual std::optional<int> productID() const = 0;
    /// What the sensor reports now, in degrees; none: any plausible lid angle.
    [[nodiscard]] virtual std::optional<int> angle() const = 0;

    // For the cases that move or unplug the sensor; a backend that cannot does not run them.

    virtual void setAngle(int) {}

    virtual void unplug() {}
};

/// The result of reading a report.
struct HIDReading {
    HIDResult result = hidSuccess;
    std::size_t length = 0;
    /// Each 0xEE where nothing was written.
    std::array<std::uint8_t, 8> bytes{};

    [[nodiscard]] int angle() const { return bytes[1] | bytes[2] << 8; }
};

[[nodiscard]] HIDReading readReport(HIDDevice& device, std::size_t room = 8,
                                    HIDReportType type = HIDReportType::Feature,
                                    std::uint8_t reportID = 1);

class HIDContract : public Contract<HIDBackend> {
protected:
    std::shared_ptr<HIDManager> manager(std::optional<int> productID, int vendorID);
    std::vector<std::shared_ptr<HIDDevice>> devices(std::optional<int> productID, int vendorID);
    /// The backend's sensor, by a search for the vendor alone.
    std::shared_ptr<HIDDevice> sensor();
};

} // namespace quorvane
