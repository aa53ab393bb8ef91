#include <algorithm>
#include <numbers>

#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// Sounds of one and two channels and of several rates.
class SoundFormats : public OnSoundServer {
protected:
    // Sound passes as 32-bit floats; this is a twentieth of a 16-bit step.
    static constexpr double exact = 1.5e-6;

    /// Plays a sound of half a second on the node and returns the recording of it.
    [[nodiscard]] Recording recordNode(const PCMBuffer& sound) {
        m_engine->connectToMainMixer(m_node, sound.format);
        EXPECT_FALSE(m_engine->start());
        SoundRecorder recorder(*m_server);
        play(*m_node, sound);
        waitFor(800ms);
        return Recording(recorder.finish());
    }

    /// 441 Hz at half of full scale, for a second.
    [[nodiscard]] static PCMBuffer tone(double rate) {
        const auto frames = static_cast<std::uint32_t>(rate);
        PCMBuffer sound = chirp({.sampleRate = rate, .channels = 2}, frames);
        for (std::size_t i = 0; i < sound.samples.size(); ++i) {
            const std::size_t frame = i / 2;
            const double time = static_cast<double>(frame) / rate;
            sound.samples[i] =
                static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * 441 * time));
        }
        return sound;
    }

    /// Expects that tone at the recording's rate, with a hundredth for a resampler's ripple.
    static void expectTone(const Recording& recording) {
        const auto begin = recording.soundFrom(0);
        ASSERT_TRUE(begin);
        // A resampler may ring a little before and after the sound.
        std::size_t first = *begin;
        while (std::abs(recording.at(first, 0)) < 0.1F)
            ++first;
        std::size_t last = recording.length() - 1;
        while (std::abs(recording.at(last, 0)) < 0.1F)
            --last;
        EXPECT_NEAR(static_cast<double>(last - first), 44100, 50);
        int rises = 0;
        double loudest = 0;
        for (std::size_t frame = first + 1; frame < last; ++frame) {
            rises += recording.at(frame - 1, 0) < 0 && recording.at(frame, 0) >= 0;
            loudest = std::max(loudest, std::abs(double{recording.at(frame, 0)}));
        }
        EXPECT_NEAR(rises, 441, 1);
        EXPECT_NEAR(loudest, 0.5, 0.01);
    }
};

TEST_P(SoundFormats, StereoComesOutSampleForSample) {
    const PCMBuffer sound = chirp(stereo, 22050);
    const Recording recording = recordNode(sound);
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    ASSERT_LE(*begin + sound.frameLength, recording.length());
    EXPECT_LT(recording.largestDifference(*begin, sound, 0, sound.frameLength), exact);
    EXPECT_FALSE(recording.soundFrom(*begin + sound.frameLength));
}

TEST_P(SoundFormats, MonoComesOutAlikeOnBothChannels) {
    const PCMBuffer sound = chirp({.sampleRate = 44100, .channels = 1}, 22050);
    const Recording recording = recordNode(sound);
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    ASSERT_LE(*begin + sound.frameLength, recording.length());
    EXPECT_LT(recording.largestDifference(*begin, sound, 0, sound.frameLength), exact);
}

TEST_P(SoundFormats, AMonoFileComesOutAlikeOnBothChannels) {
    const PCMBuffer sound = chirp({.sampleRate = 44100, .channels = 1}, 22050);
    const auto clip = player(sound);
    SoundRecorder recorder(*m_server);
    ASSERT_TRUE(clip->play());
    ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    ASSERT_LE(*begin + sound.frameLength, recording.length());
    EXPECT_LT(recording.largestDifference(*begin, sound, 0, sound.frameLength), inaudible);
}

TEST_P(SoundFormats, FilesOfOtherRatesKeepTheirPitchLengthAndLevel) {
    for (const double rate : {22050.0, 48000.0}) {
        const auto clip = player(tone(rate));
        EXPECT_NEAR(clip->duration(), 1, 1e-3);
        SoundRecorder recorder(*m_server);
        const double begin = now();
        ASSERT_TRUE(clip->play());
        ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
        EXPECT_NEAR(now() - begin, 1, 0.3);
        expectTone(Recording(recorder.finish()));
    }
}

TEST_P(SoundFormats, ABufferOfAnotherRateKeepsItsLevelAndLength) {
    PCMBuffer sound = chirp({.sampleRate = 22050, .channels = 2}, 11025);
    std::ranges::fill(sound.samples, 0.25F);
    const Recording recording = recordNode(sound);
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    // The resampler's ripple is a hundredth at most.
    EXPECT_NEAR(recording.at(*begin + 11025, 0), 0.25, 2.5e-3);
    EXPECT_NEAR(static_cast<double>(recording.silenceFrom(*begin, 1000) - *begin), 22050, 100);
}

TEST_P(SoundFormats, TwoNodesOfTwoEnginesSoundTogether) {
    PCMBuffer sound = chirp(stereo, 22050);
    std::ranges::fill(sound.samples, 0.125F);
    const auto engine = m_audio->createEngine();
    const auto node = m_audio->createPlayerNode();
    engine->attach(node);
    engine->connectToMainMixer(node, stereo);
    ASSERT_FALSE(m_engine->start());
    ASSERT_FALSE(engine->start());
    SoundRecorder recorder(*m_server);
    play(*m_node, sound);
    play(*node, sound);
    waitFor(800ms);
    const Recording recording(recorder.finish());
    std::size_t together = 0;
    for (std::size_t frame = 0; frame < recording.length(); ++frame)
        together += std::abs(recording.at(frame, 0) - 0.25) < exact &&
                    std::abs(recording.at(frame, 1) - 0.25) < exact;
    // One began a little later than the other.
    EXPECT_GT(together, 4410U);
}

INSTANTIATE_TEST_SUITE_P(On, SoundFormats, onBothSoundServers(), testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
