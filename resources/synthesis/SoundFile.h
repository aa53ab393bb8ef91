#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace quorvane::synthesis {

/// Of every sound, in Hz.
constexpr double sampleRate = 44100;

/// The number of samples in `seconds`, rounded.
constexpr std::size_t frames(double seconds) {
    const double count = seconds * sampleRate;
    const auto whole = static_cast<std::size_t>(count);
    return count - static_cast<double>(whole) < 0.5 ? whole : whole + 1;
}

/// One channel of samples from -1 to 1.
using Sound = std::vector<double>;

/// The main function of a synthesis program with the arguments `FILE.wav`: scales the sound so that
/// its largest absolute sample is `peak`, and writes it with 16 bits. Returns the exit status. The
/// encoder may overshoot `peak` by about 1 dB.
int writeSound(std::span<char*> arguments, Sound sound, double peak);

} // namespace quorvane::synthesis
