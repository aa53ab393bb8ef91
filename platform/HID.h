#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "base/NonCopyable.h"

namespace quorvane {

/// What a HID call reports: success, or any other value for a failure.
using HIDResult = int;
inline constexpr HIDResult hidSuccess = 0;

enum class HIDReportType { Input = 0, Output = 1, Feature = 2 };

/// Which devices a manager looks for.
struct HIDMatching {
    int vendorID = 0;
    /// None: every product of the vendor.
    std::optional<int> productID;

    bool operator==(const HIDMatching&) const = default;
};

/// One HID device, closed until `open`. Main thread only. The device is released with its last
/// reference; a device that is unplugged makes every later call fail and nothing worse.
class HIDDevice : NonCopyable {
public:
    virtual ~HIDDevice() = default;

    /// Anything but success: the device cannot be used (no rights, gone).
    virtual HIDResult open() = 0;

    /// Reads report `reportID` into `buffer`, the report ID in its first byte. `length` is the
    /// room in the buffer on entry and, on success, the number of bytes received. Synchronous.
    virtual HIDResult getReport(HIDReportType type, std::uint8_t reportID,
                                std::span<std::uint8_t> buffer, std::size_t& length) = 0;

    /// An integer property, by its name ("ProductID", "VendorID"); none if missing or no integer.
    [[nodiscard]] virtual std::optional<int> integerProperty(std::string_view key) const = 0;
};

/// Finds devices. Call in this order: match, schedule, open, copy, and `close` when done with it;
/// an opened manager may also just be let go. Main thread only.
class HIDManager : NonCopyable {
public:
    virtual ~HIDManager() = default;

    virtual void setDeviceMatching(const HIDMatching& matching) = 0;
    /// Puts the manager on the current thread's run loop, in its default mode.
    virtual void scheduleWithRunLoop() = 0;
    /// Anything but success: no devices are to be had from this manager.
    virtual HIDResult open() = 0;
    /// The matching devices in the platform's own order; none (or an empty list) without any.
    virtual std::optional<std::vector<std::shared_ptr<HIDDevice>>> copyDevices() = 0;
    virtual HIDResult close() = 0;
};

/// Where HID managers come from.
class HIDService : NonCopyable {
public:
    virtual ~HIDService() = default;

    /// A new manager that matches nothing yet; never null.
    virtual std::shared_ptr<HIDManager> createManager() = 0;
};

} // namespace quorvane
