#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "platform/HID.h"

namespace quorvane {

/// The lid angle channels under `sysfs`, in the natural order of device and channel. Channels that
/// cannot be used are found too; they fail to open.
[[nodiscard]] std::vector<std::shared_ptr<HIDDevice>>
findIIOLids(const std::filesystem::path& sysfs);

} // namespace quorvane
