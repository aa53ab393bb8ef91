#pragma once

#include "platform/linux/haptics/ForceFeedback.h"

namespace quorvane {

/// The event devices that the kernel has under /dev/input.
class EvdevForceFeedback final : public ForceFeedbackDevices {
public:
    std::vector<HapticNode> list() override;
    std::unique_ptr<ForceFeedbackPort> open(const HapticNode& node) override;
};

} // namespace quorvane
