#pragma once

#include <map>

#include "platform/System.h"

namespace quorvane {

/// Settings in an INI file, replaced as a whole with each write so that no crash leaves half of
/// one. Settings that others keep in the file stay. A damaged file is put aside as
/// "quorvane.ini.damaged" (then ".damaged.1" and so on) and counts as empty; one that cannot be put
/// aside is left alone, and then nothing is written.
class LinuxUserDefaults final : public UserDefaults {
public:
    /// Looks at nothing yet.
    explicit LinuxUserDefaults(std::filesystem::path file = standardFile());

    [[nodiscard]] bool boolForKey(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;

    /// `quorvane/quorvane.ini` in the XDG configuration folder.
    [[nodiscard]] static std::filesystem::path standardFile();

private:
    std::filesystem::path m_file;
    // Holds whatever became of the file.
    std::map<std::string, bool, std::less<>> m_setHere;
};

} // namespace quorvane
