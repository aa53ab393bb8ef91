#pragma once

#include <cstdint>
#include <optional>

#include "platform/Audio.h"

namespace quorvane {

/// Whole frames in one second at `sampleRate`; none if the number does not fit 32 unsigned bits.
[[nodiscard]] std::optional<std::uint32_t> rumbleFrameCount(double sampleRate);

/// A chugging engine at `time` seconds, -1 to 1: the fundamental `frequency` (Hz), its octave and
/// its sub-octave, with weights 0.5, 0.3 and 0.2, under an envelope that is a rectified sine of 4
/// Hz. The envelope is 0 at every whole second, so one second loops without a click.
[[nodiscard]] double rumbleSample(double time, double frequency);

/// Trackpad pulses per second, `elapsed` seconds into a ramp of `rampUpDuration` seconds: 5 at its
/// start, 25 from its end on.
[[nodiscard]] double hapticRate(double elapsed, double rampUpDuration);

/// Whether the tick at `elapsed` seconds is in the first sixtieth of a second of a period of the
/// current `rate`. Since the rate changes during the ramp, a pulse may be dropped or doubled; the
/// roughness is intended.
[[nodiscard]] bool isHapticPulseDue(double elapsed, double rate);

/// How often a pulse may become due, per second.
inline constexpr double hapticTickRate = 60;

} // namespace quorvane
