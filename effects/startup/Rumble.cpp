#include "effects/startup/Rumble.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorvane {

namespace {

constexpr double pi = std::numbers::pi;
constexpr double frameCountEnd = 4294967296.0;

// Pulses a second.
constexpr double slowestRate = 5;
constexpr double rateGain = 20;

} // namespace

std::optional<std::uint32_t> rumbleFrameCount(double sampleRate) {
    if (!(sampleRate > -1 && sampleRate < frameCountEnd))
        return std::nullopt;
    return static_cast<std::uint32_t>(sampleRate);
}

double rumbleSample(double time, double frequency) {
    const double envelope = std::abs(std::sin(8 * pi * time));
    const double fundamental = std::sin(2 * pi * frequency * time);
    const double octave = std::sin(2 * pi * (2 * frequency) * time);
    const double subOctave = std::sin(2 * pi * (frequency / 2) * time);
    return envelope * (0.5 * fundamental + 0.3 * octave + 0.2 * subOctave);
}

double hapticRate(double elapsed, double rampUpDuration) {
    return std::min(elapsed / rampUpDuration, 1.0) * rateGain + slowestRate;
}

bool isHapticPulseDue(double elapsed, double rate) {
    return std::fmod(elapsed, 1 / rate) < 1 / hapticTickRate;
}

} // namespace quorvane
