#pragma once

#include "platform/Application.h"

namespace quorvane {

/// The program as the desktop knows it.
class LinuxApplication final : public Application {
public:
    [[nodiscard]] LoginItemStatus loginItemStatus() const override;
    [[nodiscard]] bool isActive() const override;
};

} // namespace quorvane
