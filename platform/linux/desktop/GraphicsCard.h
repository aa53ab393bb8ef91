#pragma once

#include <filesystem>

namespace quorvane {

/// Whether this process may use a graphics card, judged by the device nodes under `devices`.
[[nodiscard]] bool hasGraphicsCard(const std::filesystem::path& devices = "/dev");

} // namespace quorvane
