#pragma once

#include <filesystem>

#include "platform/HID.h"

namespace quorvane {

/// HID devices through hidraw. Matching a vendor without a product also finds, after those, the lid
/// angle channels of the industrial-I/O subsystem, where notebooks of other makers have the sensor.
class LinuxHID final : public HIDService {
public:
    /// `sysfs`: where to look for industrial-I/O devices. Reads nothing yet.
    explicit LinuxHID(std::filesystem::path sysfs = "/sys");

    std::shared_ptr<HIDManager> createManager() override;

private:
    std::filesystem::path m_sysfs;
};

} // namespace quorvane
