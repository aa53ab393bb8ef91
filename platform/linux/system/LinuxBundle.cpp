#include "platform/linux/system/LinuxBundle.h"

#include <QString>
#include <system_error>
#include <utility>

#include "platform/linux/common/XDGFolders.h"

namespace quorvane {

namespace fs = std::filesystem;

LinuxBundle::LinuxBundle(std::vector<fs::path> folders) : m_folders(std::move(folders)) {}

std::optional<fs::path> LinuxBundle::urlForResource(std::string_view name,
                                                    std::string_view extension) const {
    const std::string file = std::string(name) + "." + std::string(extension);
    for (const fs::path& folder : m_folders) {
        fs::path path = folder / file;
        std::error_code error;
        if (fs::is_regular_file(path, error))
            return path;
    }
    return std::nullopt;
}

std::vector<fs::path> LinuxBundle::standardFolders() {
    const QString override = qEnvironmentVariable("QUORVANE_RESOURCES");
    if (!override.isEmpty())
        return {override.toStdString()};
    std::vector<fs::path> folders;
    std::error_code error;
    const fs::path executable = fs::read_symlink("/proc/self/exe", error);
    if (!error) {
        folders.push_back(executable.parent_path() / "resources");
        folders.push_back(executable.parent_path().parent_path() / "share/quorvane");
    }
    for (const fs::path& folder : xdgDataFolders())
        folders.push_back(folder / "quorvane");
    return folders;
}

} // namespace quorvane
