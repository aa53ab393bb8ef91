#pragma once

#include <filesystem>
#include <memory>
#include <thread>

#include "platform/System.h"
#include "platform/linux/system/SettingsFile.h"

namespace quorvane {

/// Settings in a SettingsFile. It is read on the main thread: a few lines, and where the home
/// folder hangs, Qt and Fontconfig do so before. It is written on another thread, which waits for
/// the disk; of several values of a setting the last one is written.
class LinuxUserDefaults final : public UserDefaults {
public:
    /// Reads nothing yet.
    explicit LinuxUserDefaults(std::filesystem::path file = standardFile());
    /// As `finish`.
    ~LinuxUserDefaults() override;

    [[nodiscard]] bool boolForKey(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;

    /// Waits until everything is written, 1 s at most; what is not by then is left to the thread.
    void finish();

    /// `quorvane/quorvane.ini` in the XDG configuration folder.
    [[nodiscard]] static std::filesystem::path standardFile();

private:
    struct Saving;

    // The thread has a reference too: it may be stuck in a write for longer than this object lives.
    std::shared_ptr<Saving> m_saving;
    // In effect even if the file could not be written.
    SettingsFile::Values m_setHere;
    std::thread m_thread;
};

} // namespace quorvane
