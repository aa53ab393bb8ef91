#pragma once

#include "platform/Haptics.h"

namespace quorvane {

/// Pulses on a device with force feedback.
class LinuxHaptics final : public HapticService {
public:
    [[nodiscard]] std::shared_ptr<HapticPerformer> defaultPerformer() override;
};

} // namespace quorvane
