#pragma once

#include <filesystem>
#include <vector>

namespace quorvane {

/// The event nodes of the keyboards that udev lists now.
[[nodiscard]] std::vector<std::filesystem::path> listKeyboardNodes();

/// Whether this process may open `node` for reading.
[[nodiscard]] bool canReadKeyboard(const std::filesystem::path& node);

} // namespace quorvane
