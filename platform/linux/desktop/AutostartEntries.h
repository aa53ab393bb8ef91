#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane {

/// What autostart entries depend on besides their own text.
struct AutostartEnvironment {
    /// The folders with entries, by precedence: a file hides those of the same name in later
    /// folders.
    std::vector<std::filesystem::path> folders;
    /// The running desktop's names, as OnlyShowIn has them.
    std::vector<std::string> desktops;
    /// This program's path, with symbolic links resolved.
    std::filesystem::path executable;

    /// From XDG_CONFIG_HOME, XDG_CONFIG_DIRS, XDG_CURRENT_DESKTOP and /proc/self/exe.
    [[nodiscard]] static AutostartEnvironment current();
};

/// Whether the desktop starts this program at login: an entry called org.quorvane.Quorvane.desktop
/// or, as in earlier versions, quorvane.desktop, or one that runs the executable, is in effect. A
/// malformed file is no entry, but still hides others.
[[nodiscard]] bool startsAtLogin(const AutostartEnvironment& environment);

} // namespace quorvane
