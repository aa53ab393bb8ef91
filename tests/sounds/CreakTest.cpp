#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "tests/sounds/Measures.h"
#include "tests/sounds/ShippedSounds.h"

namespace quorvane {
namespace {

/// Where the slips are, in frames: peaks above 4 kHz, where the lid does not resonate and each slip
/// is over before the next one even at 400 a second.
std::vector<std::size_t> slipsOf(const Samples& sound) {
    constexpr std::size_t apart = frames(0.0011);
    constexpr std::size_t around = frames(0.025);
    const std::vector<double> level = levels(band(sound, 4000, 20000), frames(0.0006), 1);
    std::vector<std::size_t> slips;
    const auto highest = [&](std::size_t place, std::size_t reach) {
        const std::size_t first = place - std::min(place, reach);
        const std::size_t last = std::min(level.size(), place + reach + 1);
        return *std::max_element(level.begin() + static_cast<std::ptrdiff_t>(first),
                                 level.begin() + static_cast<std::ptrdiff_t>(last));
    };
    for (std::size_t i = 0; i < level.size(); ++i)
        if (level[i] > 1e-3 && level[i] >= highest(i, apart) && level[i] > 0.3 * highest(i, around))
            slips.push_back(i);
    return slips;
}

std::vector<double> ratesOf(const std::vector<std::size_t>& slips) {
    std::vector<double> rates;
    for (std::size_t i = 1; i < slips.size(); ++i)
        rates.push_back(sampleRate / static_cast<double>(slips[i] - slips[i - 1]));
    return rates;
}

/// The correlation of two shapes, from -1 to 1, independent of their levels.
double likeness(std::span<const float> one, std::span<const float> other) {
    const double product = std::inner_product(one.begin(), one.end(), other.begin(), 0.0);
    return product / (rootMeanSquare(one) * rootMeanSquare(other)) /
           static_cast<double>(one.size());
}

class ShippedCreak : public ::testing::Test {
protected:
    Samples m_sound = shipped(creak);
    std::vector<std::size_t> m_slips = slipsOf(m_sound);
};

TEST_F(ShippedCreak, StartsAtOnce) {
    const auto onset = std::find_if(m_sound.begin(), m_sound.end(),
                                    [](float sample) { return std::abs(sample) > 0.06F; });
    EXPECT_LT(onset - m_sound.begin(), static_cast<std::ptrdiff_t>(frames(0.02)));
}

TEST_F(ShippedCreak, SlipsAtRatesThatWanderBetweenSome20And400ASecond) {
    const std::vector<double> rates = ratesOf(m_slips);
    ASSERT_GT(rates.size(), 100U);
    EXPECT_GT(quantile(rates, 0.01), 15);
    EXPECT_LT(quantile(rates, 0.05), 60);
    EXPECT_GT(quantile(rates, 0.95), 300);
    EXPECT_LT(quantile(rates, 0.99), 480);
}

TEST_F(ShippedCreak, GoesFromSlowToQuickAndBackMoreThanOnce) {
    // Whether each quarter of a second is quick or slow; those in between do not count.
    std::vector<bool> quick;
    for (double time = 0; time + 0.25 < 3; time += 0.25) {
        const auto first = std::lower_bound(m_slips.begin(), m_slips.end(), frames(time));
        const auto last = std::lower_bound(m_slips.begin(), m_slips.end(), frames(time + 0.25));
        const double rate = static_cast<double>(last - first) / 0.25;
        if (rate > 170 || rate < 90)
            quick.push_back(rate > 170);
    }
    quick.erase(std::unique(quick.begin(), quick.end()), quick.end());
    EXPECT_GE(quick.size(), 4U);
}

TEST_F(ShippedCreak, IsIrregular) {
    // From one slip to the next, so that a glide does not count.
    std::vector<double> leaps;
    const std::vector<double> rates = ratesOf(m_slips);
    for (std::size_t i = 1; i < rates.size(); ++i)
        leaps.push_back(std::abs(std::log(rates[i] / rates[i - 1])));
    ASSERT_GT(leaps.size(), 100U);
    EXPECT_GT(quantile(leaps, 0.5), 0.03);
    EXPECT_GT(quantile(leaps, 0.9), 0.2);
}

TEST_F(ShippedCreak, HasNoTwoSlipsAlike) {
    constexpr std::size_t before = frames(0.0005);
    constexpr std::size_t length = frames(0.0025);
    std::vector<std::span<const float>> shapes;
    for (const std::size_t slip : m_slips)
        if (slip >= before && slip - before + length <= m_sound.size())
            shapes.push_back(std::span(m_sound).subspan(slip - before, length));
    ASSERT_GT(shapes.size(), 100U);
    double alike = -1;
    for (std::size_t i = 0; i < shapes.size(); ++i)
        for (std::size_t k = 0; k < i; ++k)
            alike = std::max(alike, likeness(shapes[i], shapes[k]));
    EXPECT_LT(alike, 0.997);
}

TEST_F(ShippedCreak, IsNowhereSilentBeforeItRingsOut) {
    const double whole = rootMeanSquare(m_sound);
    // All but the last tenth of a second, in which it rings out.
    const Samples sounding(m_sound.begin(), m_sound.end() - frames(0.1));
    for (const double level : levels(sounding, frames(0.04), frames(0.02)))
        EXPECT_GT(level, whole / 10);
}

} // namespace
} // namespace quorvane
