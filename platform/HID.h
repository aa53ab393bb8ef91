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

/// Result of a HID call: hidSuccess, or any other value for a failure.
using HIDResult = int;
inline constexpr HIDResult hidSuccess = 0;

enum class HIDReportType { Input = 0, Output = 1, Feature = 2 };

/// Which devices a manager finds.
struct HIDMatching {
    int vendorID = 0;
    /// None: every product of the vendor.
    std::optional<int> productID;

    bool operator==(const HIDMatching&) const = default;
};

/// One HID device, closed until `open`, and released with its last reference. After it is
/// unplugged, its reports fail within 1/30 s, and from then on every call does, until it is plugged
/// in again where the platform notices that. Main thread only.
class HIDDevice : NonCopyable {
public:
    virtual ~HIDDevice() = default;

    /// Fails if the device cannot be used (no permission, unplugged).
    virtual HIDResult open() = 0;

    /// Reads report `reportID` into `buffer`; the first byte is the report ID. `length` is the
    /// capacity on entry and, on success, the number of bytes received. What the device said 1/30 s
    /// ago at the earliest: a platform may read it on another thread, and then fails while there is
    /// no such answer.
    virtual HIDResult getReport(HIDReportType type, std::uint8_t reportID,
                                std::span<std::uint8_t> buffer, std::size_t& length) = 0;

    /// The property `key` ("ProductID", "VendorID"); none if missing or not an integer.
    [[nodiscard]] virtual std::optional<int> integerProperty(std::string_view key) const = 0;
};

/// Finds devices. Call in this order: setDeviceMatching, scheduleWithRunLoop, open, copyDevices,
/// close; an open manager may also be dropped without `close`. Main thread only.
class HIDManager : NonCopyable {
public:
    virtual ~HIDManager() = default;

    virtual void setDeviceMatching(const HIDMatching& matching) = 0;
    /// Adds the manager to the current thread's run loop, in the default mode.
    virtual void scheduleWithRunLoop() = 0;
    /// On failure, this manager has no devices.
    virtual HIDResult open() = 0;
    /// The matching devices in the platform's order; none, or an empty list, if there are none.
    virtual std::optional<std::vector<std::shared_ptr<HIDDevice>>> copyDevices() = 0;
    virtual HIDResult close() = 0;
};

/// Creates HID managers. Main thread only.
class HIDService : NonCopyable {
public:
    virtual ~HIDService() = default;

    /// Never null.
    virtual std::shared_ptr<HIDManager> createManager() = 0;
};

} // namespace quorvane
