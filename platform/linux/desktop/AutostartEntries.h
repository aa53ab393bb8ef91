#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane {

/// What decides about autostart entries besides the entries.
struct AutostartEnvironment {
    /// The folders that hold entries, the most important first: a file hides those of its name in
    /// the folders after it.
    std::vector<std::filesystem::path> folders;
    /// The names of the desktop that is running, as entries call them.
    std::vector<std::string> desktops;
    /// This program, without symbolic links on the way.
    std::filesystem::path executable;

    /// As XDG_CONFIG_HOME, XDG_CONFIG_DIRS, XDG_CURRENT_DESKTOP and the kernel have it now.
    [[nodiscard]] static AutostartEnvironment current();
};

/// Whether the desktop starts this program as somebody logs in: an entry called quorvane.desktop,
/// or one that runs the executable, is in effect. A file that makes no sense is no entry, though it
/// hides others.
[[nodiscard]] bool startsAtLogin(const AutostartEnvironment& environment);

} // namespace quorvane
