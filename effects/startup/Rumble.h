#pragma once

#include <cstdint>
#include <optional>

#include "platform/Audio.h"

namespace quorvane {

/// The frames in one second at `sampleRate`, the fraction cut off; none if that is no unsigned
/// 32-bit number.
[[nodiscard]] std::optional<std::uint32_t> rumbleFrameCount(double sampleRate);

/// An engine that chugs: the fundamental `frequency` (Hz), its octave and its sub-octave, with
/// weights 0.5, 0.3 and 0.2, under a rectified sine of 4 Hz that swells eight times a second.
/// `time` in seconds; the result lies within -1 and 1. Over a whole second the swell begins and
/// ends in silence, so that a second of it loops without a click.
[[nodiscard]] double rumbleSample(double time, double frequency);

/// How many pulses a second the trackpad gives `elapsed` seconds into a ramp of `rampUpDuration`
/// seconds: from 5 at its start to 25 at its end, and 25 after that.
[[nodiscard]] double hapticRate(double elapsed, double rampUpDuration);

/// Whether the tick at `elapsed` seconds falls into the first sixtieth of a second of a pulse's
/// period. The period is that of the moment: its change while the ramp runs may drop or double a
/// pulse, and that roughness is wanted.
[[nodiscard]] bool isHapticPulseDue(double elapsed, double rate);

/// Ticks a second at which the trackpad's ramp is looked at.
inline constexpr double hapticTickRate = 60;

} // namespace quorvane
