#pragma once

#include "platform/System.h"

namespace quorvane {

/// The model by the kernel's "hw.model"; trust is the Accessibility permission.
class MacSystemInfo final : public SystemInfo {
public:
    [[nodiscard]] std::string modelName() const override;
    [[nodiscard]] bool isProcessTrusted() const override;
    bool isProcessTrustedWithOptions(bool prompt) override;
};

} // namespace quorvane
