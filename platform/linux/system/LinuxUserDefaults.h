#pragma once

#include <map>

#include "platform/System.h"

namespace quorvane {

/// Settings in an INI file through QSettings, which replaces the file atomically and keeps other
/// settings in it, but would overwrite a damaged one. That is put aside first as
/// "quorvane.ini.damaged" (then ".damaged.1" and so on) and counts as empty; one that cannot be put
/// aside is left alone, and then nothing is written.
class LinuxUserDefaults final : public UserDefaults {
public:
    /// Reads nothing yet.
    explicit LinuxUserDefaults(std::filesystem::path file = standardFile());

    [[nodiscard]] bool boolForKey(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;

    /// `quorvane/quorvane.ini` in the XDG configuration folder.
    [[nodiscard]] static std::filesystem::path standardFile();

private:
    std::filesystem::path m_file;
    // In effect even if the file could not be written.
    std::map<std::string, bool, std::less<>> m_setHere;
};

} // namespace quorvane
