#pragma once

#include "platform/Application.h"

namespace quorvane {

/// The program as the desktop knows it.
class LinuxApplication final : public Application {
public:
    /// Enabled or not registered: whether an autostart entry for the program is in effect now.
    [[nodiscard]] LoginItemStatus loginItemStatus() const override;
    /// Whether a window of the toolkit's has the focus; overlay panels are none.
    [[nodiscard]] bool isActive() const override;
};

} // namespace quorvane
