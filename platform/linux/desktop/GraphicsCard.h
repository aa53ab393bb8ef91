#pragma once

#include <filesystem>

namespace quorvane {

/// Whether this machine has a graphics card that we may use, going by the folder of its devices.
[[nodiscard]] bool hasGraphicsCard(const std::filesystem::path& devices = "/dev");

} // namespace quorvane
