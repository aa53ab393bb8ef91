#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <functional>
#include <numbers>
#include <numeric>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "tests/sounds/Measures.h"
#include "tests/sounds/ShippedSounds.h"

namespace quorvane {
namespace {

/// The clip twice, as the loop plays it: the seam is half-way.
Samples looped(const Samples& sound) {
    Samples twice = sound;
    twice.insert(twice.end(), sound.begin(), sound.end());
    return twice;
}

/// The level in thirds of an octave from 130 Hz, in dB.
std::vector<double> thirds(std::span<const float> samples) {
    const std::vector<double> power = powerSpectrum(samples, samples.size());
    std::vector<double> levels;
    for (double low = 3; low * std::cbrt(2) < static_cast<double>(power.size());
         low *= std::cbrt(2)) {
        double sum = 1e-12;
        for (auto bin = static_cast<std::size_t>(low);
             bin <= static_cast<std::size_t>(low * std::cbrt(2)); ++bin)
            sum += power[bin];
        levels.push_back(10 * std::log10(sum));
    }
    return levels;
}

/// How much the spectra before and after a place differ, in dB (root mean square over `thirds`).
double spectralStep(const Samples& samples, std::size_t place) {
    constexpr std::size_t window = 1024;
    const std::vector<double> before = thirds(std::span(samples).subspan(place - window, window));
    const std::vector<double> after = thirds(std::span(samples).subspan(place, window));
    double squares = 0;
    for (std::size_t i = 0; i < before.size(); ++i)
        squares += std::pow(after[i] - before[i], 2);
    return std::sqrt(squares / static_cast<double>(before.size()));
}

/// How far the treble (from 10 kHz) at a place is above that around it, in dB: a click has all
/// frequencies and stands out most where the fan is quietest.
double clickAt(const Samples& samples, std::size_t place) {
    constexpr std::size_t window = 256;
    const auto treble = [&](std::size_t start) {
        const std::vector<double> power =
            powerSpectrum(std::span(samples).subspan(start, window), window);
        double sum = 1e-12;
        for (std::size_t bin = 60; bin < power.size(); ++bin)
            sum += power[bin];
        return 10 * std::log10(sum);
    };
    return treble(place - window / 2) -
           (treble(place - window * 3 / 2) + treble(place + window / 2)) / 2;
}

/// The frequency and the prominence (dB) of the strongest line in a part of a power spectrum.
struct Line {
    double frequency;
    double prominence;
};

constexpr std::size_t lineWindow = 8192;
constexpr double bladePass = 2254;

Line lineAround(std::span<const float> samples, double frequency) {
    constexpr double binWidth = sampleRate / lineWindow;
    const std::vector<double> power = powerSpectrum(samples, lineWindow);
    const auto first = power.begin() + static_cast<std::ptrdiff_t>(frequency * 0.92 / binWidth);
    const auto last = power.begin() + static_cast<std::ptrdiff_t>(frequency * 1.08 / binWidth);
    const auto peak = std::max_element(first, last);
    // The top of the parabola through the logarithms of the highest bin and its neighbours.
    const double left = std::log(*(peak - 1));
    const double right = std::log(*(peak + 1));
    const double offset = (left - right) / (left - 2 * std::log(*peak) + right) / 2;
    const double floor = quantile({first, last}, 0.5);
    return {.frequency = (static_cast<double>(peak - power.begin()) + offset) * binWidth,
            .prominence = 10 * std::log10(*peak / floor)};
}

/// The line in the loop, every twentieth of a second; the first windows lie across the seam.
std::vector<Line> linesAround(const Samples& sound, double frequency) {
    const Samples twice = looped(sound);
    std::vector<Line> lines;
    for (std::size_t place = 0; place + frames(0.05) <= sound.size(); place += frames(0.05)) {
        const std::size_t middle = place < lineWindow ? place + sound.size() : place;
        lines.push_back(
            lineAround(std::span(twice).subspan(middle - lineWindow / 2, lineWindow), frequency));
    }
    return lines;
}

/// The power of the waves with one, two and so on whole periods in the values.
std::vector<double> powersOfWaves(const std::vector<double>& values) {
    std::vector<double> powers;
    for (std::size_t times = 1; times < values.size() / 2; ++times) {
        std::complex<double> sum = 0;
        for (std::size_t i = 0; i < values.size(); ++i)
            sum += std::polar(values[i], 2 * std::numbers::pi * static_cast<double>(times * i) /
                                             static_cast<double>(values.size()));
        powers.push_back(std::norm(sum));
    }
    return powers;
}

class ShippedFan : public ::testing::Test {
protected:
    Samples m_sound = shipped(fan);
};

TEST_F(ShippedFan, HasNoJumpAtTheSeam) {
    std::vector<double> steps;
    for (std::size_t i = 1; i < m_sound.size(); ++i)
        steps.push_back(std::abs(m_sound[i] - m_sound[i - 1]));
    EXPECT_LT(std::abs(m_sound.front() - m_sound.back()), quantile(steps, 0.99));
}

TEST_F(ShippedFan, HasNeitherChangeNorClickAtTheSeam) {
    const Samples twice = looped(m_sound);
    std::vector<double> steps;
    std::vector<double> clicks;
    for (std::size_t place = 4096; place + 4096 < m_sound.size(); place += 1500) {
        steps.push_back(spectralStep(twice, place));
        clicks.push_back(clickAt(twice, place));
    }
    EXPECT_LE(spectralStep(twice, m_sound.size()), quantile(steps, 0.95));
    EXPECT_LE(clickAt(twice, m_sound.size()), quantile(clicks, 0.99));
}

TEST_F(ShippedFan, NeverPauses) {
    const std::vector<double> all = levels(looped(m_sound), frames(0.01), frames(0.005));
    double sum = 0;
    for (const double level : all)
        sum += level;
    const double mean = sum / static_cast<double>(all.size());
    EXPECT_GT(*std::min_element(all.begin(), all.end()), mean / 10);
}

TEST_F(ShippedFan, HasTonesAtItsBladeRateAndTwoHarmonics) {
    const std::vector<Line> blades = linesAround(m_sound, bladePass);
    for (const double harmonic : {1.0, 2.0, 3.0}) {
        const std::vector<Line> lines = linesAround(m_sound, harmonic * bladePass);
        std::vector<double> prominences;
        std::vector<double> errors;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            prominences.push_back(lines[i].prominence);
            errors.push_back(std::abs(lines[i].frequency / harmonic / blades[i].frequency - 1));
        }
        EXPECT_GT(quantile(prominences, 0.1), 12) << harmonic;
        EXPECT_LT(quantile(errors, 0.9), 0.003) << harmonic;
    }
}

TEST_F(ShippedFan, RunsAtASlightlyUnevenSpeed) {
    std::vector<double> speeds;
    for (const Line& line : linesAround(m_sound, bladePass))
        speeds.push_back(line.frequency);
    EXPECT_GT(variation(speeds), 0.01);
    EXPECT_LT(variation(speeds), 0.05);
}

TEST_F(ShippedFan, VariesItsSpeedInWholePeriodsOfTheLoop) {
    // The third harmonic shows the wheel's speed best.
    std::vector<double> speeds;
    for (const Line& line : linesAround(m_sound, 3 * bladePass))
        speeds.push_back(line.frequency);
    std::vector<double> waves = powersOfWaves(speeds);
    const double all = std::accumulate(waves.begin(), waves.end(), 0.0);
    std::sort(waves.begin(), waves.end(), std::greater());
    // A wave without a whole number of periods would be spread over all others.
    EXPECT_GT(std::accumulate(waves.begin(), waves.begin() + 4, 0.0) / all, 0.995);
}

} // namespace
} // namespace quorvane
