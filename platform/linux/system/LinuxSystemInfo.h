#pragma once

#include <filesystem>

#include "platform/System.h"

namespace quorvane {

/// The model as the firmware names it.
class LinuxSystemInfo final : public SystemInfo {
public:
    /// `root` is where /sys and /proc are. Reads nothing yet.
    explicit LinuxSystemInfo(std::filesystem::path root = "/");

    /// DMI's product name, else the device tree's model.
    [[nodiscard]] std::string modelName() const override;

private:
    std::filesystem::path m_root;
};

} // namespace quorvane
