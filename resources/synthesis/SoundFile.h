#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace quorvane::synthesis {

/// In Hz, of every sound.
constexpr double sampleRate = 44100;

constexpr std::size_t frames(double seconds) {
    const double count = seconds * sampleRate;
    const auto whole = static_cast<std::size_t>(count);
    return count - static_cast<double>(whole) < 0.5 ? whole : whole + 1;
}

/// One channel of samples from -1 to 1.
using Sound = std::vector<double>;

/// The main program of a synthesis, `NAME FILE.wav`: scales the sound so that its highest sample is
/// `peak`, and writes it with 16 bits. The encoder may overshoot a peak by a decibel or so.
int writeSound(std::span<char*> arguments, Sound sound, double peak);

} // namespace quorvane::synthesis
