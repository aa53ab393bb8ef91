#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// The sound server goes and comes back.
class ServerRestart : public OnSoundServer {
protected:
    // Longer than the pause after a failed attempt to connect.
    static constexpr auto longEnough = 6s;

    void expectSilence() const {
        SoundRecorder recorder(*m_server);
        waitFor(longEnough);
        EXPECT_FALSE(Recording(recorder.finish()).soundFrom(0));
    }
};

TEST_P(ServerRestart, AnEndlessLoopGoesOnWhereItWouldBe) {
    constexpr std::uint32_t loop = 10 * 44100;
    const auto sound = endlessPlayer(stampedSound(loop));
    const double begin = now();
    ASSERT_TRUE(sound->play());
    for (int restart = 0; restart < 2; ++restart) {
        waitFor(500ms);
        m_server->kill();
        EXPECT_TRUE(waitUntil([&] { return !sound->isPlaying(); }));
        waitFor(500ms);
        m_server->start();
        const SoundRecorder recorder(*m_server);
        expectInPlace(recorder, begin, loop);
        EXPECT_TRUE(sound->isPlaying());
    }
}

TEST_P(ServerRestart, AnEndlessLoopWaitsForMinutesIfNeedBe) {
    constexpr std::uint32_t loop = 10 * 44100;
    const auto sound = endlessPlayer(stampedSound(loop));
    const double begin = now();
    ASSERT_TRUE(sound->play());
    waitFor(300ms);
    m_server->kill();
    waitFor(7s);
    m_server->start();
    const SoundRecorder recorder(*m_server);
    expectInPlace(recorder, begin, loop);
}

TEST_P(ServerRestart, ASoundThatAsksForTheServerBeforeItComesIsHeardWhereItWouldBe) {
    const auto sound = player(stampedSound(8 * 44100));
    killServer();
    const double begin = now();
    EXPECT_FALSE(sound->play());
    waitFor(2s);
    m_server->start();
    const SoundRecorder recorder(*m_server);
    expectInPlace(recorder, begin, std::size_t{8} * 44100);
    EXPECT_TRUE(sound->isPlaying());
    EXPECT_NEAR(sound->currentTime(), now() - begin, 0.3);
    ASSERT_TRUE(waitUntil([&] { return !sound->isPlaying(); }));
    EXPECT_NEAR(now() - begin, 8, 0.4);
}

TEST_P(ServerRestart, ASoundIsDroppedWhenTheServerNeedsMoreThanFiveSeconds) {
    const auto sound = player(stampedSound(490'000));
    killServer();
    EXPECT_FALSE(sound->play());
    waitFor(5500ms);
    m_server->start();
    expectSilence();
    EXPECT_FALSE(sound->isPlaying());
}

TEST_P(ServerRestart, AShortSoundIsNotHeardLate) {
    const auto sound = player(stampedSound(4410));
    killServer();
    EXPECT_FALSE(sound->play());
    waitFor(500ms);
    m_server->start();
    expectSilence();
    EXPECT_FALSE(sound->isPlaying());
    EXPECT_EQ(sound->currentTime(), 0);
}

TEST_P(ServerRestart, TheNextSoundIsHeardFromItsBeginning) {
    const auto sound = player(stampedSound(4410));
    const auto hold = m_audio->holdOutput();
    ASSERT_TRUE(sound->play());
    killServer();
    sound->stop();
    sound->setCurrentTime(0);
    m_server->start();
    SoundRecorder recorder(*m_server);
    ASSERT_TRUE(waitUntil([&] { return !m_engine->start(); }));
    ASSERT_TRUE(sound->play());
    ASSERT_TRUE(waitUntil([&] { return !sound->isPlaying(); }));
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    EXPECT_EQ(placeAt(recording, *begin), 0U);
    EXPECT_EQ(recording.silenceFrom(*begin, 4410) - *begin, 4410U);
}

TEST_P(ServerRestart, WithoutAServerStartingFailsQuicklyAndQuietly) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    killServer();
    const double begin = now();
    for (int attempt = 0; attempt < 10; ++attempt) {
        const auto error = m_engine->start();
        ASSERT_TRUE(error);
        EXPECT_NE(error->description, "");
    }
    EXPECT_LT(now() - begin, 0.5);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

INSTANTIATE_TEST_SUITE_P(On, ServerRestart, onBothSoundServers(),
                         testing::PrintToStringParamName());

/// One program takes the other's place on the same socket.
class ExchangedServer : public OnSoundServer {};

TEST_P(ExchangedServer, AnEndlessLoopGoesOnOnTheOtherOneAndBack) {
    constexpr std::uint32_t loop = 10 * 44100;
    const auto other =
        SoundServer::make(GetParam() == SoundServerKind::PipeWire ? SoundServerKind::PulseAudio
                                                                  : SoundServerKind::PipeWire,
                          m_folder.path());
    const auto sound = endlessPlayer(stampedSound(loop));
    const double begin = now();
    ASSERT_TRUE(sound->play());
    waitFor(1500ms);
    m_server->kill();
    other->start();
    {
        const SoundRecorder recorder(*other);
        expectInPlace(recorder, begin, loop);
    }
    other->kill();
    m_server->start();
    const SoundRecorder recorder(*m_server);
    expectInPlace(recorder, begin, loop);
}

INSTANTIATE_TEST_SUITE_P(From, ExchangedServer, onBothSoundServers(),
                         testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
