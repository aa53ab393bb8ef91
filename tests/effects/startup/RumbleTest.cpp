#include "effects/startup/Rumble.h"

#include <cmath>
#include <limits>

#include "tests/effects/startup/StartupFixture.h"

namespace quorvane {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using RumbleTest = StartupFixture;

/// The rumble written out anew, so that a slip in one of the two shows.
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

TEST_F(RumbleTest, every_sample_is_the_formulas) {
    makeManager();
    const PCMBuffer& buffer = *manager->rumbleBuffer();
    ASSERT_EQ(buffer.frameLength, 44100U);
    ASSERT_EQ(buffer.format, (AudioFormat{.sampleRate = 44100, .channels = 1}));
    for (int i = 0; i < 44100; ++i)
        ASSERT_EQ(buffer.samples[static_cast<std::size_t>(i)], expectedSample(i, 25)) << i;
}

TEST_F(RumbleTest, the_swell_is_silent_eight_times_a_second_and_at_the_seam) {
    makeManager();
    const auto& samples = manager->rumbleBuffer()->samples;
    EXPECT_EQ(samples[0], 0);
    for (int beat = 1; beat < 8; ++beat) {
        // Every eighth of a second is a whole frame or lies between two.
        const double frame = beat * 44100.0 / 8;
        EXPECT_NEAR(samples[static_cast<std::size_t>(std::lround(frame))], 0, 4e-4) << beat;
    }
    EXPECT_NEAR(samples[11025], 0, 1e-12);
    EXPECT_NEAR(samples.back(), samples.front(), 1e-3) << "the loop's seam";
}

TEST_F(RumbleTest, the_peak_stays_at_or_below_full_scale) {
    makeManager();
    float peak = 0;
    for (const float sample : manager->rumbleBuffer()->samples)
        peak = std::max(peak, std::abs(sample));
    EXPECT_LE(peak, 1.0F);
    EXPECT_GT(peak, 0.7F);
}

TEST_F(RumbleTest, another_frequency_changes_the_samples_and_the_line) {
    makeManager();
    manager->rumbleFrequency() = 30.5;
    manager->generateRumbleBuffer(44100, {.sampleRate = 44100, .channels = 1});
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [RUMBLE] Buffer generated: 30.5Hz + 15.25Hz sub"));
    EXPECT_EQ(manager->rumbleBuffer()->samples[1234], expectedSample(1234, 30.5));
}

TEST_F(RumbleTest, the_frame_count_is_the_rate_without_its_fraction) {
    EXPECT_EQ(rumbleFrameCount(44100), 44100U);
    EXPECT_EQ(rumbleFrameCount(0.9), 0U);
    EXPECT_EQ(rumbleFrameCount(-0.9), 0U);
    EXPECT_EQ(rumbleFrameCount(4294967295.5), 4294967295U);
    for (const double rate : {-1.0, 4294967296.0, std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(rumbleFrameCount(rate), std::nullopt) << rate;
}

TEST_F(RumbleTest, a_rate_that_is_no_count_of_frames_is_fatal) {
    makeManager();
    EXPECT_DEATH(manager->generateRumbleBuffer(-2, {.sampleRate = 44100, .channels = 1}),
                 "StartupSoundManager");
}

// The fade-in.

TEST_F(RumbleTest, starts_silent_and_loops_from_the_buffers_beginning) {
    makeManager();
    manager->startRumble();
    EXPECT_THAT(rumble().calls(),
                ElementsAre("attach", "connect 44100/1", "volume 0", "schedule loops", "play"));
    EXPECT_EQ(machine.console.lines.back(), rumbleLine);
    advance(30);
    EXPECT_EQ(rumble().state(), SimulatedAudioVoice::State::Sounding);
}

TEST_F(RumbleTest, the_volume_rises_in_thirty_equal_steps_over_three_seconds) {
    makeManager();
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

TEST_F(RumbleTest, a_lower_volume_on_the_way_caps_the_ramp_and_keeps_its_steps) {
    makeManager();
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

TEST_F(RumbleTest, stopping_cancels_what_is_left_of_the_ramp) {
    makeManager();
    manager->startRumble();
    advance(1.5);
    manager->stopRumble();
    EXPECT_FALSE(manager->isRamping());
    const float volume = rumble().volume();
    advance(5);
    EXPECT_EQ(rumble().volume(), volume);
    EXPECT_EQ(rumble().state(), SimulatedAudioVoice::State::Stopped);
    EXPECT_EQ(rumble().scheduledCount(), 0U);
    EXPECT_EQ(machine.audio.runningEngineCount(), 1U) << "the engine goes on";
}

TEST_F(RumbleTest, starting_again_schedules_the_loop_afresh_and_ramps_anew) {
    makeManager();
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

TEST_F(RumbleTest, stopping_what_does_not_run_only_prints_its_line) {
    makeManager();
    manager->stopRumble();
    manager->stopHaptic();
    EXPECT_THAT(machine.console.lines, ElementsAre(rumbleStoppedLine, hapticStoppedLine));
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
}

// The trackpad.

TEST_F(RumbleTest, the_pulse_rate_rises_from_5_to_25_over_the_ramp_and_stays) {
    EXPECT_DOUBLE_EQ(hapticRate(0, 3), 5);
    EXPECT_DOUBLE_EQ(hapticRate(1.5, 3), 15);
    EXPECT_DOUBLE_EQ(hapticRate(3, 3), 25);
    EXPECT_DOUBLE_EQ(hapticRate(300, 3), 25);
}

TEST_F(RumbleTest, a_pulse_is_due_in_the_first_sixtieth_of_a_second_of_its_period) {
    EXPECT_TRUE(isHapticPulseDue(0, 5));
    EXPECT_TRUE(isHapticPulseDue(0.016, 5));
    EXPECT_FALSE(isHapticPulseDue(0.0167, 5));
    EXPECT_FALSE(isHapticPulseDue(0.199, 5));
    EXPECT_TRUE(isHapticPulseDue(0.201, 5));
}

TEST_F(RumbleTest, the_trackpad_pulses_by_the_phase_of_each_tick) {
    makeManager();
    // Scheduled first, so it sees each tick's date just before the manager does.
    const double start = machine.runLoop.currentDate();
    std::vector<double> expected;
    machine.runLoop.scheduledTimer(1.0 / 60, true, [&](Timer&) {
        const double elapsed = machine.runLoop.currentDate() - start;
        const double rate = std::fmin(elapsed / 3, 1) * 20 + 5;
        if (std::fmod(elapsed, 1 / rate) < 1.0 / 60)
            expected.push_back(machine.runLoop.currentMediaTime());
    });
    manager->startHaptic();
    advance(6);
    ASSERT_GT(expected.size(), 100U);
    ASSERT_EQ(pulses().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(pulses()[i].at, expected[i]);
        EXPECT_EQ(pulses()[i].pattern, HapticPattern::Alignment);
        EXPECT_EQ(pulses()[i].time, HapticPerformanceTime::Now);
    }
}

TEST_F(RumbleTest, at_full_rate_the_trackpad_pulses_25_times_a_second) {
    makeManager();
    manager->startHaptic();
    advance(3);
    const auto before = pulses().size();
    advance(4);
    // Of the 12 ticks of 5 periods, 5 are well inside a pulse's sixtieth and one is on its edge,
    // where the date's last digits decide.
    EXPECT_GE(pulses().size() - before, 100U);
    EXPECT_LE(pulses().size() - before, 120U);
}

TEST_F(RumbleTest, stopping_ends_the_pulses_at_once) {
    makeManager();
    manager->startHaptic();
    advance(1.5);
    manager->stopHaptic();
    EXPECT_FALSE(manager->isPulsing());
    const auto count = pulses().size();
    advance(5);
    EXPECT_EQ(pulses().size(), count);
    EXPECT_THAT(machine.console.lines, Contains(hapticStoppedLine));
}

TEST_F(RumbleTest, a_new_start_begins_the_ramp_anew) {
    makeManager();
    manager->startHaptic();
    advance(3);
    manager->stopHaptic();
    const auto before = pulses().size();
    manager->startHaptic();
    advance(1);
    // 5 a second rising to 11.7: some 8 in the first second, not 25.
    EXPECT_NEAR(static_cast<double>(pulses().size() - before), 8, 3);
}

} // namespace
} // namespace quorvane
