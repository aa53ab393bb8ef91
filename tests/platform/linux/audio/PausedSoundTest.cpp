#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// A sound that rests goes on with the frame at which it rested.
class PausedSound : public OnSoundServer {
protected:
    static constexpr std::uint32_t length = 2 * 44100;
    // Ramps of 5 ms.
    static constexpr std::size_t ramp = 221;

    /// Expects the sound in two parts, which have all frames in order but for the ramps.
    static void expectTwoParts(const Recording& recording) {
        const auto begin = recording.soundFrom(0);
        ASSERT_TRUE(begin);
        EXPECT_EQ(placeAt(recording, *begin), 0U);
        std::size_t frame = *begin;
        while (placeAt(recording, frame) == frame - *begin)
            ++frame;
        const std::size_t firstPart = frame - *begin;
        const std::size_t silence = recording.silenceFrom(frame, 1000);
        EXPECT_LE(silence - frame, ramp + 1);
        const auto resumed = recording.soundFrom(silence);
        ASSERT_TRUE(resumed);
        EXPECT_GT(*resumed - silence, 10000U);
        const std::size_t end = recording.silenceFrom(*resumed, 1000);
        EXPECT_EQ(placeAt(recording, end - 1), length - 1);
        std::size_t secondPart = 0;
        while (placeAt(recording, end - 1 - secondPart) == length - 1 - secondPart)
            ++secondPart;
        EXPECT_LE(end - secondPart - *resumed, ramp + 1);
        // The ramps may be of the same frames or of successive ones.
        EXPECT_LE(firstPart + secondPart, length);
        EXPECT_GE(firstPart + secondPart + 2 * (ramp + 1), length);
        EXPECT_GT(firstPart, 10000U);
        EXPECT_FALSE(recording.soundFrom(end));
    }
};

TEST_P(PausedSound, ANodeLosesAndRepeatsNothing) {
    ASSERT_FALSE(m_engine->start());
    SoundRecorder recorder(*m_server);
    play(*m_node, stampedSound(length));
    waitFor(700ms);
    m_node->pause();
    waitFor(600ms);
    m_node->play();
    waitFor(1600ms);
    expectTwoParts(Recording(recorder.finish()));
}

TEST_P(PausedSound, AFilePlayerLosesAndRepeatsNothing) {
    const auto clip = player(stampedSound(length));
    SoundRecorder recorder(*m_server);
    ASSERT_TRUE(clip->play());
    waitFor(700ms);
    clip->stop();
    EXPECT_GT(clip->currentTime(), 0.5);
    waitFor(600ms);
    ASSERT_TRUE(clip->play());
    ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
    expectTwoParts(Recording(recorder.finish()));
}

TEST_P(PausedSound, NothingIsLostWhenTheStreamHasRestedMeanwhile) {
    const auto clip = player(stampedSound(length));
    SoundRecorder recorder(*m_server);
    ASSERT_TRUE(clip->play());
    waitFor(700ms);
    clip->stop();
    ASSERT_TRUE(waitUntil([&] { return m_server->streams().at(0).isCorked; }));
    ASSERT_TRUE(clip->play());
    ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
    expectTwoParts(Recording(recorder.finish()));
}

INSTANTIATE_TEST_SUITE_P(On, PausedSound, onBothSoundServers(), testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
