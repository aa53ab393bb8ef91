#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/linux/haptics/ForceFeedback.h"

namespace quorvane {

/// The kind of a device with these force-feedback capabilities, given as the bits in the kernel's
/// order; none if it cannot pulse.
[[nodiscard]] std::optional<HapticKind> hapticKind(std::span<const unsigned long> bits);

/// The same from the text of an input device's capabilities/ff: words in hexadecimal, the highest
/// first.
[[nodiscard]] std::optional<HapticKind> hapticKind(std::string_view text);

/// The event devices under /dev/input.
class EvdevForceFeedback final : public ForceFeedbackDevices {
public:
    std::vector<HapticNode> list() override;
    std::unique_ptr<ForceFeedbackPort> open(const HapticNode& node) override;
};

} // namespace quorvane
