#pragma once

#include <linux/input.h>

#include "platform/Haptics.h"
#include "platform/linux/haptics/ForceFeedback.h"

namespace quorvane {

/// The kernel's FF_HAPTIC, which the headers have only since Linux 6.18; devices have it only on a
/// kernel that knows it.
inline constexpr int hapticEffectType = 0x4F;

/// What a haptic touchpad is asked to do: the kernel's ff_haptic_effect of Linux 6.18, which lies
/// in an ff_effect where its other kinds lie.
struct HapticEffect {
    /// A waveform of the haptics page of the HID usage tables.
    std::uint16_t hidUsage = 0;
    std::uint16_t vendorID = 0;
    std::uint8_t vendorWaveformPage = 0;
    /// Percent.
    std::uint16_t intensity = 0;
    std::uint16_t repeatCount = 0;
    /// Milliseconds.
    std::uint16_t retriggerPeriod = 0;
};

/// The effect that is a pulse of that pattern, not yet on any device.
[[nodiscard]] ff_effect hapticEffect(HapticKind kind, HapticPattern pattern);

} // namespace quorvane
