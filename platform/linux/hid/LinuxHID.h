#pragma once

#include <filesystem>

#include "platform/HID.h"

namespace quorvane {

/// HID devices by way of hidraw. A search for a vendor without a product also finds, after those
/// devices, the lid angle channels of the industrial-I/O subsystem: notebooks of other makers have
/// the sensor there.
class LinuxHID final : public HIDService {
public:
    /// `sysfs` is where industrial-I/O devices are looked up; hidraw nodes are always the
    /// machine's own. Looks at nothing yet.
    explicit LinuxHID(std::filesystem::path sysfs = "/sys");

    std::shared_ptr<HIDManager> createManager() override;

private:
    std::filesystem::path m_sysfs;
};

} // namespace quorvane
