#pragma once

#include <vector>

#include "platform/System.h"

namespace quorvane {

/// Resources as files "name.extension", from the first folder that has one.
class LinuxBundle final : public Bundle {
public:
    explicit LinuxBundle(std::vector<std::filesystem::path> folders = standardFolders());

    [[nodiscard]] std::optional<std::filesystem::path>
    urlForResource(std::string_view name, std::string_view extension) const override;

    /// Where the program looks, in order: `resources` and `../share/quorvane` beside the
    /// executable, then `quorvane` in the XDG data folders.
    /// The environment variable QUORVANE_RESOURCES, if set, names the one folder to use instead,
    /// so that a resource missing there is missing.
    [[nodiscard]] static std::vector<std::filesystem::path> standardFolders();

private:
    std::vector<std::filesystem::path> m_folders;
};

} // namespace quorvane
