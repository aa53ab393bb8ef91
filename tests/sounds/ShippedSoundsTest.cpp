#include <cmath>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "tests/sounds/Measures.h"
#include "tests/sounds/ShippedSounds.h"
#include "tests/support/ChildProcess.h"

namespace quorvane {
namespace {

/// The loudness of each sound as the program plays it, in LUFS: low enough for the peaks of the
/// creak and the engine, high enough for the fan.
constexpr double targetLoudness = -21;

/// A crack is shorter than a block of integrated loudness, so it is measured over the impulse time
/// constant of sound level meters (IEC 60651), in s.
constexpr double impulseTime = 0.035;

class ShippedSounds : public ::testing::TestWithParam<ShippedSound> {
protected:
    Samples m_sound = shipped(GetParam());
};

TEST_P(ShippedSounds, HaveTheLengthThatTheirEffectsNeed) {
    EXPECT_GE(m_sound.size(), frames(GetParam().shortest));
    EXPECT_LE(m_sound.size(), frames(GetParam().longest));
}

TEST_P(ShippedSounds, AreEquallyLoudAtTheVolumesAtWhichTheyArePlayed) {
    const bool isCrack = GetParam().name == std::string(crack.name);
    const double loudness =
        isCrack ? loudestStretch(m_sound, impulseTime) : integratedLoudness(m_sound);
    EXPECT_NEAR(loudness + decibels(GetParam().volume), targetLoudness, 1.5);
}

TEST_P(ShippedSounds, PeakADecibelBelowFullScale) {
    EXPECT_LE(truePeak(m_sound), -1);
}

TEST_P(ShippedSounds, HaveNoOffset) {
    EXPECT_LT(std::abs(mean(m_sound)), 1e-3 * rootMeanSquare(m_sound));
}

TEST_P(ShippedSounds, MatchWhatTheirProgramsMakeExceptForCodecNoise) {
    const std::filesystem::path rebuilt =
        std::filesystem::current_path() / (std::string(GetParam().name) + "-rebuilt.wav");
    const std::string synthesis = std::string(QUORVANE_SYNTHESES "/") + GetParam().synthesis;
    ASSERT_EQ(ChildProcess::run({synthesis, rebuilt.string()}), 0);
    Samples difference = decoded(rebuilt.string());
    std::filesystem::remove(rebuilt);
    ASSERT_EQ(difference.size(), m_sound.size());
    for (std::size_t i = 0; i < difference.size(); ++i)
        difference[i] -= m_sound[i];
    EXPECT_LT(decibels(rootMeanSquare(difference) / rootMeanSquare(m_sound)), -20);
}

std::string nameOf(const ::testing::TestParamInfo<ShippedSound>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(All, ShippedSounds, ::testing::ValuesIn(shippedSounds), nameOf);

TEST(ShippedSoundFiles, TogetherTakeLessThan800kB) {
    std::uintmax_t bytes = 0;
    for (const ShippedSound& sound : shippedSounds)
        bytes += std::filesystem::file_size(pathOf(sound));
    EXPECT_LT(bytes, 800'000U);
}

} // namespace
} // namespace quorvane
