#pragma once

#include "platform/EventTap.h"

namespace quorvane {

/// The Accessibility permission of the system's privacy settings.
class MacAccessibility final : public Accessibility {
public:
    [[nodiscard]] bool isProcessTrusted() const override;
    bool isProcessTrustedWithOptions(bool prompt) override;
};

} // namespace quorvane
