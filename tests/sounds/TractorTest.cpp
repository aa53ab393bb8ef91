#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "tests/sounds/Measures.h"
#include "tests/sounds/ShippedSounds.h"

namespace quorvane {
namespace {

/// A stretch of time, in s.
struct Stretch {
    double start;
    double end;
};

/// Every hundredth of a second.
constexpr double hop = 0.01;

class ShippedTractor : public ::testing::Test {
protected:
    /// The level in the tenth of a second from a time on.
    [[nodiscard]] double levelAt(double time) const {
        return rootMeanSquare(std::span(m_sound).subspan(frames(time), frames(0.1)));
    }

    [[nodiscard]] double loudestIn(double start, double end) const {
        double loudest = 0;
        for (double time = start; time < end; time += hop)
            loudest = std::max(loudest, levelAt(time));
        return loudest;
    }

    /// Where it is almost silent again in its first two thirds.
    [[nodiscard]] std::vector<Stretch> failures() const {
        constexpr double silence = 0.03;
        std::vector<Stretch> pauses;
        for (double time = 0.5; time < length() * 2 / 3; time += hop) {
            if (levelAt(time) > silence)
                continue;
            if (pauses.empty() || time > pauses.back().end + 0.8)
                pauses.push_back({.start = time, .end = time});
            pauses.back().end = time;
        }
        return pauses;
    }

    /// The times of the exhaust strokes, in s.
    [[nodiscard]] std::vector<double> strokes(double start, double end) const {
        const std::vector<double> level = levels(m_exhaust, frames(2 * hop), frames(hop));
        const double least = 0.3 * quantile(level, 0.98);
        std::vector<double> strokes;
        for (auto i = static_cast<std::size_t>(start / hop);
             i < static_cast<std::size_t>(end / hop); ++i) {
            const auto place = level.begin() + static_cast<std::ptrdiff_t>(i);
            const bool highest = *std::max_element(place - 6, place + 7) == *place;
            const bool rises = *place > 1.6 * *std::min_element(place - 8, place);
            if (highest && rises && *place > least)
                strokes.push_back(static_cast<double>(i) * hop);
        }
        return strokes;
    }

    [[nodiscard]] double length() const { return static_cast<double>(m_sound.size()) / sampleRate; }

    Samples m_sound = shipped(tractor);
    Samples m_exhaust = band(m_sound, 60, 350);
};

TEST_F(ShippedTractor, StartsWithARelayWithinATenthOfASecond) {
    EXPECT_GT(levelAt(0), 5 * rootMeanSquare(std::span(m_sound).subspan(0, frames(0.05))));
    EXPECT_GT(levelAt(0), 0.05);
}

TEST_F(ShippedTractor, WhinesAtAVaryingPitchWhileItCranks) {
    // The second harmonic of the mesh of pinion and ring.
    std::vector<double> pitches;
    std::vector<double> prominences;
    for (double time = 0.3; time < 1.5; time += 0.05) {
        const auto window = std::span(m_sound).subspan(frames(time), 4096);
        const std::vector<double> power = powerSpectrum(window, 4096);
        const auto first = power.begin() + 43;
        const auto last = power.begin() + 88;
        const auto peak = std::max_element(first, last);
        pitches.push_back(static_cast<double>(peak - power.begin()));
        prominences.push_back(10 * std::log10(*peak / quantile({first, last}, 0.5)));
    }
    EXPECT_GT(quantile(prominences, 0.25), 12);
    EXPECT_LT(quantile(pitches, 0.1), 0.9 * quantile(pitches, 0.9));
}

TEST_F(ShippedTractor, FailsTwiceWithCoughsBeforeItRuns) {
    const std::vector<Stretch> pauses = failures();
    ASSERT_EQ(pauses.size(), 2U);
    double from = 0.5;
    for (const Stretch& pause : pauses) {
        const auto coughs = strokes(pause.start - 1.3, pause.start);
        EXPECT_GE(coughs.size(), 1U) << pause.start;
        EXPECT_GT(loudestIn(from, pause.start), 3 * levelAt(pause.start));
        from = pause.end;
    }
}

TEST_F(ShippedTractor, ThenIdlesRoughlyAtAFewUnevenStrokesASecond) {
    const std::vector<Stretch> pauses = failures();
    ASSERT_FALSE(pauses.empty());
    const std::vector<double> all = strokes(pauses.back().end + 0.7, length() - 1);
    ASSERT_GE(all.size(), 12U);
    std::vector<double> waits;
    for (std::size_t i = 1; i < all.size(); ++i)
        waits.push_back(all[i] - all[i - 1]);
    const double rate = static_cast<double>(waits.size()) / (all.back() - all.front());
    EXPECT_GT(rate, 3);
    EXPECT_LT(rate, 10);
    EXPECT_GT(variation(waits), 0.25);
    EXPECT_GT(all.back() - all.front(), 2);
}

TEST_F(ShippedTractor, DiesWithAWheezeAndEndsInSilence) {
    const double running = loudestIn(5, length() - 1);
    const double wheeze = levelAt(length() - 0.5);
    EXPECT_LT(wheeze, running / 10);
    EXPECT_GT(wheeze, running / 500);
    EXPECT_LT(rootMeanSquare(std::span(m_sound).last(frames(0.005))), running / 1000);
}

TEST_F(ShippedTractor, HasLittlePowerBelow50Hertz) {
    EXPECT_LT(shareOfPower(m_sound, 0, 50), 0.02);
}

} // namespace
} // namespace quorvane
