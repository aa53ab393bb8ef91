#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace quorvane {

/// One channel at the rate below.
using Samples = std::vector<float>;

/// In Hz.
inline constexpr double sampleRate = 44100;

constexpr std::size_t frames(double seconds) {
    const double count = seconds * sampleRate;
    const auto whole = static_cast<std::size_t>(count);
    return count - static_cast<double>(whole) < 0.5 ? whole : whole + 1;
}

/// Of a factor of amplitude, in dB.
double decibels(double factor);

/// The integrated loudness of ITU-R BS.1770-4, in LUFS.
double integratedLoudness(const Samples& samples);

/// The same weighting without a gate, in LUFS, of the loudest stretch of `duration` (s).
double loudestStretch(const Samples& samples, double duration);

/// The highest that a converter would make of the samples, in dB of full scale.
double truePeak(const Samples& samples);

double mean(std::span<const float> samples);
double rootMeanSquare(std::span<const float> samples);

/// Of each stretch of `window` frames, one every `hop` frames, as many as fit.
std::vector<double> levels(const Samples& samples, std::size_t window, std::size_t hop);

/// Only what lies between two frequencies (Hz).
Samples band(const Samples& samples, double low, double high);

/// The power in bins of sampleRate / size each, seen through a Hann window as long as the samples;
/// `size`, a power of two, is at least that.
std::vector<double> powerSpectrum(std::span<const float> samples, std::size_t size);

/// The share of the power of all samples that lies between two frequencies (Hz).
double shareOfPower(const Samples& samples, double low, double high);

/// The value that so large a share of the values does not exceed.
double quantile(std::vector<double> values, double share);

/// Of the values' standard deviation and mean.
double variation(std::span<const double> values);

} // namespace quorvane
