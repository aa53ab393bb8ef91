#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace quorvane::synthesis {

/// In Hz, of every sound.
constexpr double sampleRate = 44100;

constexpr std::size_t frames(double seconds) {
    return static_cast<std::size_t>(seconds * sampleRate + 0.5);
}

/// One channel of samples from -1 to 1.
using Sound = std::vector<double>;

/// The main program of a synthesis, `NAME FILE.wav`: scales the sound so that its highest sample is
/// `peak`, and writes it with 16 bits. The encoder may overshoot a peak by a decibel or so.
int writeSound(std::span<char*> arguments, Sound sound, double peak);

} // namespace quorvane::synthesis
