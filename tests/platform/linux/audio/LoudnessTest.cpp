#include <algorithm>
#include <numbers>

#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// What happens to sums beyond full scale.
class Loudness : public OnSoundServer {
protected:
    [[nodiscard]] static PCMBuffer tone(double frequency, double level, std::uint32_t frames) {
        PCMBuffer sound = stampedSound(frames);
        for (std::size_t i = 0; i < sound.samples.size(); ++i) {
            const std::size_t frame = i / 2;
            const double time = static_cast<double>(frame) / stereo.sampleRate;
            sound.samples[i] =
                static_cast<float>(level * std::sin(2 * std::numbers::pi * frequency * time));
        }
        return sound;
    }

    [[nodiscard]] static double loudest(const Recording& recording) {
        double most = 0;
        for (std::size_t frame = 0; frame < recording.length(); ++frame)
            for (const std::size_t channel : {0U, 1U})
                most = std::max(most, std::abs(double{recording.at(frame, channel)}));
        return most;
    }

    /// The most frames in a row that are equal and loud, as where a wave is cut.
    [[nodiscard]] static int longestFlatTop(const Recording& recording) {
        int longest = 0;
        int run = 0;
        for (std::size_t frame = 1; frame < recording.length(); ++frame) {
            const bool flat = std::abs(recording.at(frame, 0)) > 0.5F &&
                              std::abs(recording.at(frame, 0) - recording.at(frame - 1, 0)) < 1e-6F;
            run = flat ? run + 1 : 0;
            longest = std::max(longest, run);
        }
        return longest;
    }
};

TEST_P(Loudness, ThreeLoudSoundsAtOnceAreNotCut) {
    ASSERT_FALSE(m_engine->start());
    SoundRecorder recorder(*m_server);
    // Their sum has peaks of 2.5.
    const auto first = endlessPlayer(tone(100, 0.8, 44100));
    const auto second = endlessPlayer(tone(170, 0.85, 44100));
    ASSERT_TRUE(first->play());
    ASSERT_TRUE(second->play());
    play(*m_node, tone(230, 0.85, 44100), BufferOptions::Loops);
    expectSoundIn(recorder);
    waitFor(2s);
    const Recording recording(recorder.finish());
    EXPECT_LE(loudest(recording), 1.0);
    EXPECT_GT(loudest(recording), 0.89) << "quieter than it has to be";
    EXPECT_LE(longestFlatTop(recording), 3);
}

TEST_P(Loudness, ASingleSoundIsHeardAsItIs) {
    const PCMBuffer sound = tone(100, 0.8, 44100);
    const auto clip = player(sound);
    SoundRecorder recorder(*m_server);
    ASSERT_TRUE(clip->play());
    ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    // Its first frame is 0.
    ASSERT_GE(*begin, 1U);
    ASSERT_LE(*begin + 44099, recording.length());
    EXPECT_LT(recording.largestDifference(*begin - 1, sound, 0, 44100), inaudible);
}

TEST_P(Loudness, ASoundIsAsItIsAgainWhenALoudSumHasEnded) {
    const auto loud = player(tone(300, 0.9, 22050));
    const auto other = player(tone(310, 0.9, 22050));
    const PCMBuffer sound = tone(100, 0.8, 22050);
    const auto clip = player(sound);
    ASSERT_TRUE(loud->play());
    ASSERT_TRUE(other->play());
    ASSERT_TRUE(waitUntil([&] { return !loud->isPlaying() && !other->isPlaying(); }));
    waitFor(1s);
    SoundRecorder recorder(*m_server);
    ASSERT_TRUE(clip->play());
    ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    ASSERT_GE(*begin, 1U);
    ASSERT_LE(*begin + 22049, recording.length());
    EXPECT_LT(recording.largestDifference(*begin - 1, sound, 0, 22050), inaudible);
}

INSTANTIATE_TEST_SUITE_P(On, Loudness, onBothSoundServers(), testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
