#include "effects/startup/Rumble.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/effects/startup/StartupFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RumbleTest : public StartupFixture {
protected:
    RumbleTest() { makeManager(); }
};

/// The formula written out a second time, to catch a mistake in either.
float expectedSample(int frame, double frequency) {
    constexpr double eightPi = 25.132741228718345;
    constexpr double twoPi = 6.283185307179586;
    const double t = frame / 44100.0;
    const double partials = 0.5 * std::sin(twoPi * frequency * t) +
                            0.3 * std::sin(twoPi * (2 * frequency) * t) +
                            0.2 * std::sin(twoPi * (frequency / 2) * t);
    return static_cast<float>(std::fabs(std::sin(eightPi * t)) * partials);
}

// The buffer.

TEST_F(RumbleTest, EverySampleFollowsTheFormula) {
    const PCMBuffer& buffer = *manager->rumbleBuffer();
    ASSERT_EQ(buffer.frameLength, 44100U);
    ASSERT_EQ(buffer.format, (AudioFormat{.sampleRate = 44100, .channels = 1}));
    for (int i = 0; i < 44100; ++i)
        ASSERT_EQ(buffer.samples[static_cast<std::size_t>(i)], expectedSample(i, 25)) << i;
}

TEST_F(RumbleTest, TheEnvelopeIsZeroEightTimesASecondAndAtTheSeam) {
    const auto& samples = manager->rumbleBuffer()->samples;
    EXPECT_EQ(samples[0], 0);
    for (int beat = 1; beat < 8; ++beat) {
        // An eighth of a second need not be a whole number of frames.
        const double frame = beat * 44100.0 / 8;
        EXPECT_NEAR(samples[static_cast<std::size_t>(std::lround(frame))], 0, 4e-4) << beat;
    }
    EXPECT_NEAR(samples[11025], 0, 1e-12);
    EXPECT_NEAR(samples.back(), samples.front(), 1e-3) << "the loop's seam";
}

TEST_F(RumbleTest, ThePeakStaysAtOrBelowFullScale) {
    float peak = 0;
    for (const float sample : manager->rumbleBuffer()->samples)
        peak = std::max(peak, std::abs(sample));
    EXPECT_LE(peak, 1.0F);
    EXPECT_GT(peak, 0.7F);
}

TEST_F(RumbleTest, AnotherFrequencyChangesTheSamplesAndTheLine) {
    manager->rumbleFrequency() = 30.5;
    manager->generateRumbleBuffer(44100, {.sampleRate = 44100, .channels = 1});
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [RUMBLE] Buffer generated: 30.5Hz + 15.25Hz sub"));
    EXPECT_EQ(manager->rumbleBuffer()->samples[1234], expectedSample(1234, 30.5));
}

TEST_F(RumbleTest, AnotherRateGivesOneSecondOfTheSameSound) {
    manager->generateRumbleBuffer(22050, {.sampleRate = 22050, .channels = 1});
    ASSERT_EQ(manager->rumbleBuffer()->frameLength, 22050U);
    EXPECT_EQ(manager->rumbleBuffer()->samples[617], expectedSample(1234, 25));
}

TEST_F(RumbleTest, OfTwoChannelsOnlyTheFirstIsFilled) {
    manager->generateRumbleBuffer(44100, {.sampleRate = 44100, .channels = 2});
    const auto& samples = manager->rumbleBuffer()->samples;
    ASSERT_EQ(samples.size(), 88200U);
    EXPECT_EQ(samples[2468], expectedSample(1234, 25));
    EXPECT_NE(samples[2468], 0);
    EXPECT_EQ(samples[2469], 0);
}

TEST_F(RumbleTest, ARateBelowOneGivesAnEmptyBuffer) {
    manager->generateRumbleBuffer(0.5, {.sampleRate = 44100, .channels = 1});
    EXPECT_EQ(manager->rumbleBuffer()->frameLength, 0U);
    EXPECT_THAT(machine.console.lines, ElementsAre(bufferLine));
}

TEST_F(RumbleTest, TheFrameCountIsTheRateWithoutItsFraction) {
    EXPECT_EQ(rumbleFrameCount(44100), 44100U);
    EXPECT_EQ(rumbleFrameCount(0.9), 0U);
    EXPECT_EQ(rumbleFrameCount(-0.9), 0U);
    EXPECT_EQ(rumbleFrameCount(4294967295.5), 4294967295U);
    for (const double rate : {-1.0, 4294967296.0, std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(rumbleFrameCount(rate), std::nullopt) << rate;
}

TEST_F(RumbleTest, ARateThatIsNoNumberOfFramesEndsTheProgram) {
    for (const double rate : {-1.0, 4294967296.0, -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()})
        EXPECT_DEATH(manager->generateRumbleBuffer(rate, {.sampleRate = 44100, .channels = 1}),
                     "quorvane: fatal: StartupSoundManager: the sample rate is no count of frames");
}

// The fade-in.

TEST_F(RumbleTest, StartsSilentAndLoopsFromTheBuffersBeginning) {
    manager->startRumble();
    EXPECT_THAT(rumble().calls(),
                ElementsAre("attach", "connect 44100/1", "volume 0", "schedule loops", "play"));
    EXPECT_EQ(machine.console.lines.back(), rumbleLine);
    advance(30);
    EXPECT_EQ(rumble().state(), SimulatedAudioVoice::State::Sounding);
}

TEST_F(RumbleTest, TheVolumeRisesInThirtyEqualStepsOverThreeSeconds) {
    manager->startRumble();
    advance(0.1);
    EXPECT_NEAR(rumble().volume(), 1.0F / 30, 1e-7);
    advance(1.4);
    EXPECT_NEAR(rumble().volume(), 0.5F, 1e-6);
    advance(1.4);
    EXPECT_NEAR(rumble().volume(), 29.0F / 30, 1e-6);
    EXPECT_TRUE(manager->isRamping());
    advance(0.1);
    EXPECT_EQ(rumble().volume(), 1.0F);
    EXPECT_FALSE(manager->isRamping());
    advance(10);
    EXPECT_EQ(rumble().volume(), 1.0F);
}

TEST_F(RumbleTest, ALowerVolumeDuringTheRampCapsItAndKeepsItsSteps) {
    manager->startRumble();
    advance(0.5);
    manager->rumbleVolume() = 0.4F;
    advance(0.5);
    EXPECT_NEAR(rumble().volume(), 10.0F / 30, 1e-6);
    advance(0.5);
    EXPECT_EQ(rumble().volume(), 0.4F);
    advance(5);
    EXPECT_EQ(rumble().volume(), 0.4F);
}

TEST_F(RumbleTest, AHigherVolumeDuringTheRampKeepsItsSteps) {
    manager->rumbleVolume() = 0.3F;
    manager->startRumble();
    advance(1);
    EXPECT_NEAR(rumble().volume(), 0.1F, 1e-6);
    manager->rumbleVolume() = 1.0F;
    advance(1);
    EXPECT_NEAR(rumble().volume(), 0.2F, 1e-6);
    advance(5);
    EXPECT_NEAR(rumble().volume(), 0.3F, 1e-6);
}

TEST_F(RumbleTest, TheFadeInTakesTheRampsLengthOfItsStart) {
    EXPECT_EQ(manager->rampUpDuration(), 3.0);
    manager->rampUpDuration() = 1.5;
    manager->startRumble();
    EXPECT_EQ(machine.console.lines.back(), "🔊 [RUMBLE] Started with 1.5s ramp-up");
    advance(0.05);
    EXPECT_NEAR(rumble().volume(), 1.0F / 30, 1e-7);
    manager->rampUpDuration() = 60;
    advance(0.7);
    EXPECT_NEAR(rumble().volume(), 0.5F, 1e-6);
    advance(0.75);
    EXPECT_EQ(rumble().volume(), 1.0F);
    EXPECT_FALSE(manager->isRamping());
}

TEST_F(RumbleTest, TheRampsTimerEndsWithItsThirtiethStep) {
    manager->startRumble();
    advance(2.999);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    advance(0.001);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    EXPECT_EQ(std::count_if(rumble().calls().begin(), rumble().calls().end(),
                            [](const std::string& call) { return call.starts_with("volume"); }),
              31);
}

TEST_F(RumbleTest, StoppingCancelsWhatIsLeftOfTheRamp) {
    manager->startRumble();
    advance(1.5);
    manager->stopRumble();
    EXPECT_FALSE(manager->isRamping());
    const float volume = rumble().volume();
    advance(5);
    EXPECT_EQ(rumble().volume(), volume);
    EXPECT_EQ(rumble().state(), SimulatedAudioVoice::State::Stopped);
    EXPECT_EQ(rumble().scheduledCount(), 0U);
    EXPECT_EQ(machine.audio.runningEngineCount(), 1U) << "the engine keeps running";
}

TEST_F(RumbleTest, StartingAgainRestartsTheLoopAndTheRamp) {
    manager->startRumble();
    advance(2);
    manager->stopRumble();
    manager->startRumble();
    EXPECT_EQ(rumble().volume(), 0);
    EXPECT_EQ(rumble().position(), 0);
    advance(3);
    EXPECT_EQ(rumble().volume(), 1.0F);
    EXPECT_EQ(machine.audio.engineStartCount(), 1U);
}

TEST_F(RumbleTest, StoppingWhenNotRunningOnlyPrintsItsLine) {
    manager->stopRumble();
    manager->stopHaptic();
    EXPECT_THAT(machine.console.lines, ElementsAre(rumbleStoppedLine, hapticStoppedLine));
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
    EXPECT_EQ(rumble().calls().back(), "stop");
}

} // namespace
} // namespace quorvane
