#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/sounds/Measures.h"
#include "tests/sounds/ShippedSounds.h"

namespace quorvane {
namespace {

class ShippedCrack : public ::testing::Test {
protected:
    [[nodiscard]] std::size_t onset() const {
        float peak = 0;
        for (const float sample : m_sound)
            peak = std::max(peak, std::abs(sample));
        const auto first = std::find_if(m_sound.begin(), m_sound.end(), [peak](float sample) {
            return std::abs(sample) > peak / 10;
        });
        return static_cast<std::size_t>(first - m_sound.begin());
    }

    Samples m_sound = shipped(crack);
};

TEST_F(ShippedCrack, StartsWithin5Milliseconds) {
    EXPECT_LT(onset(), frames(0.005));
}

TEST_F(ShippedCrack, IsLoudestRightAfterItsStart) {
    const std::vector<double> level = levels(m_sound, frames(0.005), frames(0.001));
    const auto loudest = std::max_element(level.begin(), level.end()) - level.begin();
    EXPECT_LT(loudest, 10);
}

TEST_F(ShippedCrack, FallsBy40DecibelsWithin150Milliseconds) {
    const std::vector<double> level = levels(m_sound, frames(0.005), frames(0.001));
    const double peak = *std::max_element(level.begin(), level.end());
    const std::size_t late = onset() / frames(0.001) + 150;
    ASSERT_GT(level.size(), late);
    for (std::size_t i = late; i < level.size(); ++i)
        EXPECT_LT(level[i], peak / 100) << i << " ms";
}

TEST_F(ShippedCrack, HasItsEnergyBetween300HertzAnd10Kilohertz) {
    EXPECT_GT(shareOfPower(m_sound, 300, 10000), 0.95);
}

TEST_F(ShippedCrack, HasEnergyInEveryOctave) {
    constexpr std::array<std::pair<double, double>, 5> octaves{
        {{300, 700}, {700, 1400}, {1400, 2800}, {2800, 5600}, {5600, 10000}}};
    for (const auto& [low, high] : octaves)
        EXPECT_GT(shareOfPower(m_sound, low, high), 0.03) << low << " to " << high << " Hz";
}

} // namespace
} // namespace quorvane
