#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// An endless loop while the outputs change.
class DefaultOutput : public OnSoundServer {
protected:
    static constexpr std::uint32_t loop = 10 * 44100;

    void SetUp() override {
        OnSoundServer::SetUp();
        m_loop = endlessPlayer(stampedSound(loop));
        m_begin = now();
        ASSERT_TRUE(m_loop->play());
        const SoundRecorder recorder(*m_server);
        expectInPlace(recorder, m_begin, loop);
        // Far enough for a loop that begins again to be told from one that goes on.
        waitFor(1500ms);
    }

    void expectOn(const std::string& sink) {
        const SoundRecorder recorder(*m_server, sink);
        expectInPlace(recorder, m_begin, loop);
        EXPECT_TRUE(m_loop->isPlaying());
    }

    std::shared_ptr<AudioFilePlayer> m_loop;
    double m_begin = 0;
};

TEST_P(DefaultOutput, ALoopGoesOnOnTheNewOne) {
    m_server->addSink("other");
    waitFor(300ms);
    m_server->chooseSink("other");
    expectOn("other");
    m_server->chooseSink("out");
    expectOn("out");
}

TEST_P(DefaultOutput, ALoopGoesOnOnAnotherOneWhenItsOwnGoes) {
    m_server->addSink("other");
    m_server->removeSink("out");
    expectOn("other");
}

TEST_P(DefaultOutput, ALoopGoesOnOnANewOneWhenThereWasNone) {
    m_server->removeSink("out");
    waitFor(1500ms);
    m_server->addSink("new");
    expectOn("new");
}

TEST_P(DefaultOutput, AClickAfterwardsIsHeardOnTheNewOne) {
    m_loop->stop();
    const auto click = player(stampedSound(2205));
    const auto hold = m_audio->holdOutput();
    m_server->addSink("other");
    m_server->chooseSink("other");
    SoundRecorder recorder(*m_server, "other");
    waitFor(300ms);
    ASSERT_TRUE(click->play());
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    EXPECT_EQ(placeAt(recording, *begin), 0U);
    EXPECT_EQ(recording.silenceFrom(*begin, 4410) - *begin, 2205U);
}

INSTANTIATE_TEST_SUITE_P(On, DefaultOutput, onBothSoundServers(),
                         testing::PrintToStringParamName());

/// On PulseAudio only: a sink that was suspended by hand does not resume on PipeWire.
class SuspendedOutput : public DefaultOutput {};

TEST_P(SuspendedOutput, ALoopGoesOnWhereItWouldBeWhenItIsResumed) {
    m_server->suspendSink("out", true);
    waitFor(1s);
    m_server->suspendSink("out", false);
    expectOn("out");
}

INSTANTIATE_TEST_SUITE_P(On, SuspendedOutput, testing::Values(SoundServerKind::PulseAudio),
                         testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
