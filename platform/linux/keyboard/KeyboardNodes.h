#pragma once

#include <filesystem>
#include <vector>

namespace quorvane {

/// The event nodes of the keyboards that udev lists now. Reads its files, which takes a few
/// milliseconds and waits for no device.
[[nodiscard]] std::vector<std::filesystem::path> listKeyboardNodes();

/// Whether this process has the right to read `node`. Does not open it: that would wake a keyboard
/// that sleeps, and wait for it.
[[nodiscard]] bool canReadKeyboard(const std::filesystem::path& node);

} // namespace quorvane
