#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace quorvane {

/// One channel at `sampleRate`.
using Samples = std::vector<float>;

/// In Hz.
inline constexpr double sampleRate = 44100;

constexpr std::size_t frames(double seconds) {
    const double count = seconds * sampleRate;
    const auto whole = static_cast<std::size_t>(count);
    return count - static_cast<double>(whole) < 0.5 ? whole : whole + 1;
}

/// A factor of amplitude in dB.
double decibels(double factor);

/// The integrated loudness of ITU-R BS.1770-4, in LUFS.
double integratedLoudness(const Samples& samples);

/// The same weighting without a gate, in LUFS, of the loudest stretch of `duration` (s).
double loudestStretch(const Samples& samples, double duration);

/// The true peak, which may lie between two samples, in dB of full scale.
double truePeak(const Samples& samples);

double mean(std::span<const float> samples);
double rootMeanSquare(std::span<const float> samples);

/// The root mean square of each `window` frames, one every `hop` frames, as many as fit.
std::vector<double> levels(const Samples& samples, std::size_t window, std::size_t hop);

/// Only what lies between two frequencies (Hz).
Samples band(const Samples& samples, double low, double high);

/// The power in bins of sampleRate / size each, through a Hann window as long as the samples.
/// `size` is a power of two and at least the number of samples.
std::vector<double> powerSpectrum(std::span<const float> samples, std::size_t size);

/// The share of the power of all samples that lies between two frequencies (Hz).
double shareOfPower(const Samples& samples, double low, double high);

/// The value that a `share` (0 to 1) of the values does not exceed.
double quantile(std::vector<double> values, double share);

/// The ratio of the values' standard deviation to their mean.
double variation(std::span<const double> values);

} // namespace quorvane
