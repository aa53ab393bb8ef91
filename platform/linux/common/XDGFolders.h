#pragma once

#include <filesystem>
#include <vector>

namespace quorvane {

// The XDG base directories. Relative ones in the environment are ignored. Without a home folder in
// the environment, it is the one in the user database. Main thread only.

/// XDG_CONFIG_HOME, by default ".config" in the home folder.
[[nodiscard]] std::filesystem::path xdgConfigFolder();

/// That and XDG_CONFIG_DIRS, by default "/etc/xdg"; the most important first.
[[nodiscard]] std::vector<std::filesystem::path> xdgConfigFolders();

/// XDG_DATA_HOME and XDG_DATA_DIRS, with their defaults; the most important first.
[[nodiscard]] std::vector<std::filesystem::path> xdgDataFolders();

} // namespace quorvane
