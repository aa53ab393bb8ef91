#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/audio/Voice.h"

namespace quorvane {
namespace {

using ::testing::Each;
using ::testing::FloatNear;

/// Mono; frame n has the value n / 1000, up to `frames`.
std::shared_ptr<const PCMBuffer> stamped(std::uint32_t frames) {
    auto sound = std::make_shared<PCMBuffer>();
    sound->format = {.sampleRate = 44100, .channels = 1};
    sound->frameCapacity = sound->frameLength = frames;
    for (std::uint32_t frame = 0; frame < frames; ++frame)
        sound->samples.push_back(static_cast<float>(frame) / 1000);
    return sound;
}

std::shared_ptr<const PCMBuffer> level(float value, std::uint32_t frames) {
    auto sound = std::make_shared<PCMBuffer>(*stamped(frames));
    sound->samples.assign(frames, value);
    return sound;
}

Voice once(std::shared_ptr<const PCMBuffer> sound, std::int64_t begin, std::int64_t place = 0) {
    const std::int64_t frames = sound->frameLength;
    return {{{.sound = std::move(sound), .start = 0, .end = frames}}, place, begin, 1};
}

/// The left channel of `count` frames.
std::vector<float> render(const Voice& voice, std::int64_t first, std::size_t count) {
    std::vector<float> both(count * 2);
    voice.addTo(both, first);
    std::vector<float> left;
    for (std::size_t frame = 0; frame < count; ++frame)
        left.push_back(both[frame * 2]);
    return left;
}

TEST(Voice, AFrameOfTheStreamHasTheSameSampleInWhateverPieceItIsRendered) {
    const Voice voice({{.sound = stamped(700), .start = 0, .end = endless}}, 0, 1000, 1);
    const auto whole = render(voice, 900, 5000);
    for (const std::int64_t first : {900, 1000, 1001, 1699, 1700, 2345, 4000}) {
        const auto piece = render(voice, first, 1200);
        for (std::size_t frame = 0; frame < piece.size(); ++frame)
            ASSERT_EQ(piece[frame], whole[static_cast<std::size_t>(first - 900) + frame])
                << first << " + " << frame;
    }
}

TEST(Voice, ASoundBeginsAtItsFrameWithoutAFadeAndEndsAfterItsLast) {
    const Voice voice = once(level(0.5F, 300), 1000);
    EXPECT_EQ(voice.end(), 1300);
    EXPECT_THAT(render(voice, 0, 1000), Each(0));
    EXPECT_THAT(render(voice, 1000, 300), Each(0.5F));
    EXPECT_THAT(render(voice, 1300, 1000), Each(0));
}

TEST(Voice, ALoopHasNoSeam) {
    const Voice voice({{.sound = stamped(300), .start = 0, .end = 900}}, 0, 0, 1);
    const auto samples = render(voice, 0, 901);
    for (std::size_t frame = 0; frame < 900; ++frame)
        ASSERT_FLOAT_EQ(samples[frame], static_cast<float>(frame % 300) / 1000);
    EXPECT_EQ(samples[900], 0);
}

TEST(Voice, PartsFollowEachOtherWithoutAGap) {
    const Voice voice({{.sound = level(0.1F, 100), .start = 0, .end = 100},
                       {.sound = level(0.2F, 50), .start = 100, .end = 200}},
                      0, 10, 1);
    EXPECT_EQ(voice.end(), 210);
    EXPECT_THAT(render(voice, 10, 100), Each(0.1F));
    EXPECT_THAT(render(voice, 110, 100), Each(0.2F));
    EXPECT_THAT(render(voice, 210, 10), Each(0));
}

TEST(Voice, InTheMiddleOfASoundTheGainRisesInFiveMilliseconds) {
    const Voice voice = once(level(0.5F, 2000), 100, 1000);
    const auto samples = render(voice, 100, 1000);
    EXPECT_EQ(samples.front(), 0);
    EXPECT_THAT(samples[110], FloatNear(0.25F, 1e-6F));
    EXPECT_LT(samples[219], 0.5F);
    EXPECT_THAT(std::vector(samples.begin() + 220, samples.end()), Each(0.5F));
}

TEST(Voice, FadesOutFromTheGainThatItHasInFiveMilliseconds) {
    Voice voice = once(level(1, 2000), 0);
    voice.setGain(0.5F, 100);
    voice.fadeOut(210);
    EXPECT_EQ(voice.end(), 430);
    const auto samples = render(voice, 210, 300);
    EXPECT_THAT(samples[0], FloatNear(0.75F, 1e-6F));
    for (std::size_t frame = 1; frame < 220; ++frame)
        ASSERT_LT(samples[frame], samples[frame - 1]);
    EXPECT_THAT(std::vector(samples.begin() + 220, samples.end()), Each(0));
}

TEST(Voice, AnotherGainIsReachedWithoutAStep) {
    Voice voice = once(level(1, 2000), 0);
    voice.setGain(0, 100);
    const auto samples = render(voice, 0, 1000);
    for (std::size_t frame = 1; frame < samples.size(); ++frame)
        ASSERT_LE(std::abs(samples[frame] - samples[frame - 1]), 1.001F / 220);
    EXPECT_THAT(std::vector(samples.begin() + 320, samples.end()), Each(0));
}

TEST(Voice, OneChannelIsHeardOnBothAndAThirdIsNot) {
    auto three = std::make_shared<PCMBuffer>(*level(0, 1));
    three->format.channels = 3;
    three->samples = {0.1F, 0.2F, 0.9F};
    std::array<float, 2> both{};
    once(three, 0).addTo(both, 0);
    EXPECT_THAT(both, ::testing::ElementsAre(0.1F, 0.2F));
    both = {};
    once(level(0.3F, 1), 0).addTo(both, 0);
    EXPECT_THAT(both, ::testing::ElementsAre(0.3F, 0.3F));
}

TEST(Limiter, LeavesWhatIsBelowOneDecibelUnderFullScaleAsItIs) {
    std::array samples{0.0F, 0.5F, -0.89F, 0.89F};
    limit(samples);
    EXPECT_THAT(samples, ::testing::ElementsAre(0.0F, 0.5F, -0.89F, 0.89F));
}

TEST(Limiter, KeepsSumsBelowFullScaleInTheirOrder) {
    std::array samples{0.9F, 0.95F, 1.0F, 1.1F, -1.1F};
    limit(samples);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_LT(samples.at(i), samples.at(i + 1));
    EXPECT_LT(samples[3], 1);
    EXPECT_FLOAT_EQ(samples[4], -samples[3]);
    std::array loud{3.0F};
    limit(loud);
    EXPECT_LE(loud[0], 1);
}

} // namespace
} // namespace quorvane
