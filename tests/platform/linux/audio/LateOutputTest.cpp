#include <atomic>

#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// An output that is heard some 0.2 s after it was given the sound, as Bluetooth headphones are.
class LateOutput : public OnSoundServer {
protected:
    // What both servers' late sinks have at least, and at most with what the server adds.
    static constexpr double leastLatency = 0.15;
    static constexpr double mostLatency = 0.45;

    void SetUp() override {
        OnSoundServer::SetUp();
        m_server->addLateSink("late");
        m_server->chooseSink("late");
        m_hold = m_audio->holdOutput();
        ASSERT_FALSE(m_engine->start());
        // Until the sink runs and is as late as it gets.
        waitFor(1s);
    }

    /// Plays a sound of `frames` and returns the seconds until its completion.
    [[nodiscard]] double secondsUntilCompletion(std::uint32_t frames) {
        const auto ended = std::make_shared<std::atomic<bool>>(false);
        const double begin = now();
        m_node->scheduleBuffer(std::make_shared<PCMBuffer>(stampedSound(frames)),
                               BufferOptions::Once, [ended] { *ended = true; });
        m_node->play();
        EXPECT_TRUE(waitUntil([&] { return ended->load(); }));
        return now() - begin;
    }

    std::shared_ptr<AudioOutputHold> m_hold;
};

TEST_P(LateOutput, AStopIsSilentAsSoonAsTheSinkTakesSound) {
    SoundRecorder recorder(*m_server, "late");
    play(*m_node, stampedSound(44100), BufferOptions::Loops);
    expectSoundIn(recorder);
    m_node->stop();
    const std::size_t stopped = recorder.recorded().length();
    waitFor(1s);
    const Recording recording(recorder.finish());
    // What the recorder and the server had at the time of the stop.
    EXPECT_LT(recording.silenceFrom(0, 1), recording.length());
    EXPECT_FALSE(recording.soundFrom(stopped + static_cast<std::size_t>(0.5 * 44100)));
}

INSTANTIATE_TEST_SUITE_P(On, LateOutput, onBothSoundServers(), testing::PrintToStringParamName());

/// PipeWire has no late sink without hardware that also says how late it is.
class LateCompletion : public LateOutput {};

TEST_P(LateCompletion, ACompletionComesWhenTheLastFrameHasBeenHeard) {
    for (const std::uint32_t frames : {4410U, 22050U, 44100U}) {
        const double length = static_cast<double>(frames) / 44100;
        const double seconds = secondsUntilCompletion(frames);
        EXPECT_GT(seconds, length + leastLatency);
        EXPECT_LT(seconds, length + mostLatency + 0.3);
    }
}

TEST_P(LateCompletion, AFilePlayerPlaysUntilTheLastFrameHasBeenHeard) {
    const auto clip = player(stampedSound(13230));
    const double begin = now();
    ASSERT_TRUE(clip->play());
    ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
    EXPECT_GT(now() - begin, 0.3 + leastLatency);
    EXPECT_LT(now() - begin, 0.3 + mostLatency + 0.3);
}

INSTANTIATE_TEST_SUITE_P(On, LateCompletion, testing::Values(SoundServerKind::PulseAudio),
                         testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
