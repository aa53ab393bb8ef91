#pragma once

#include <filesystem>
#include <vector>

#include "platform/linux/hid/HIDDeviceList.h"

namespace quorvane {

/// The lid angle channels of the industrial-I/O subsystem under `sysfs`, sorted by the numbers of
/// device and channel. Each is shown as a HID device without properties whose feature report 1
/// holds the angle: the report ID, then whole degrees, low byte first. Failures are errno values,
/// ENODEV for a channel that is gone. A channel that cannot be used fails to open.
[[nodiscard]] std::vector<FoundHIDDevice> findIIOLids(const std::filesystem::path& sysfs);

} // namespace quorvane
