#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

/// An INI file whose section "General" has the settings. Everything else in it is kept to the byte.
/// A damaged file is put aside as "quorvane.ini.damaged" (then ".damaged.1" and so on), which is
/// said on standard error, and counts as empty; one that cannot be put aside is left alone. One
/// thread at a time.
class SettingsFile {
public:
    using Values = std::map<std::string, bool, std::less<>>;

    explicit SettingsFile(std::filesystem::path path);

    /// The text after "key="; none if there is no such key, or no file that can be read.
    [[nodiscard]] std::optional<std::string> value(std::string_view key) const;

    /// Sets `values` in the file, which is replaced in one step and on the disk after that. False,
    /// with a line on standard error: the file is as before.
    [[nodiscard]] bool save(const Values& values) const;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace quorvane
