#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace quorvane {

/// Numbers of the descriptors that this process has open.
inline std::set<std::string> openDescriptors() {
    const std::filesystem::path folder("/proc/self/fd");
    std::set<std::string> open;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        open.insert(entry.path().filename());
    // Without the iterator's own, which is closed by now.
    std::erase_if(open, [&folder](const std::string& name) {
        return !std::filesystem::is_symlink(folder / name);
    });
    return open;
}

} // namespace quorvane
