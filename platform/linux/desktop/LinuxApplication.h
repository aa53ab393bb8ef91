#pragma once

#include "platform/Application.h"

namespace quorvane {

/// The program as a login item and as the active application.
class LinuxApplication final : public Application {
public:
    /// Enabled while an autostart entry for the program is in effect, else NotRegistered.
    [[nodiscard]] LoginItemStatus loginItemStatus() const override;
    /// Whether a Qt window has the focus; overlay panels are not Qt windows.
    [[nodiscard]] bool isActive() const override;
};

} // namespace quorvane
