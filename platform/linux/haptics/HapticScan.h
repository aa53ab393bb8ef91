#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "platform/linux/haptics/ForceFeedback.h"

struct udev;

namespace quorvane {

/// What a device with these force-feedback capabilities makes pulses of, by the bits in the
/// kernel's order; none when it makes none.
[[nodiscard]] std::optional<HapticKind> hapticKind(std::span<const unsigned long> bits);

/// The same by the text of an input device's capabilities/ff: words in hexadecimal, the highest
/// first.
[[nodiscard]] std::optional<HapticKind> hapticKind(std::string_view text);

/// All event devices of the machine that can be felt, in no particular order.
[[nodiscard]] std::vector<HapticNode> listHapticNodes(udev& context);

/// Touchpads before anything else, event2 before event10.
void sortBySuitability(std::vector<HapticNode>& nodes);

} // namespace quorvane
