#include <algorithm>
#include <fstream>
#include <functional>

#include <unistd.h>

#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

// The sanitizers keep freed memory for a while.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool memoryIsCounted = false;
#else
constexpr bool memoryIsCounted = true;
#endif

/// The sound server keeps its connections and does not answer.
class HungServer : public OnSoundServer {
protected:
    static constexpr std::uint32_t loop = 10 * 44100;

    void TearDown() override { m_server->thaw(); }

    /// Expects each of the calls to return at once.
    static void expectNoWaiting(const std::function<void()>& call) {
        const double begin = now();
        call();
        EXPECT_LT(now() - begin, 0.05);
    }

    /// All that the main thread may ask for.
    void expectNoCallToWait() {
        const auto clip = player(stampedSound(4410));
        // Decoding, which is waited for a little, has nothing to do with the server.
        ASSERT_TRUE(clip->hasSound());
        waitFor(100ms);
        for (int round = 0; round < 5; ++round) {
            expectNoWaiting([&] { static_cast<void>(m_engine->start()); });
            expectNoWaiting([&] { play(*m_node, stampedSound(4410)); });
            expectNoWaiting([&] { m_node->setVolume(0.5F); });
            expectNoWaiting([&] { m_node->pause(); });
            expectNoWaiting([&] { m_node->play(); });
            expectNoWaiting([&] { m_node->stop(); });
            expectNoWaiting([&] { clip->play(); });
            expectNoWaiting([&] { clip->setCurrentTime(0.01); });
            expectNoWaiting([&] { static_cast<void>(clip->currentTime()); });
            expectNoWaiting([&] { static_cast<void>(clip->isPlaying()); });
            expectNoWaiting([&] { clip->stop(); });
            expectNoWaiting([&] { m_engine->stop(); });
            std::shared_ptr<AudioOutputHold> hold;
            expectNoWaiting([&] { hold = m_audio->holdOutput(); });
            waitFor(200ms);
            expectNoWaiting([&] { hold.reset(); });
        }
    }

    void expectDestructionNotToWait() {
        auto clip = endlessPlayer(stampedSound(4410));
        auto hold = m_audio->holdOutput();
        clip->play();
        expectNoWaiting([&] { clip.reset(); });
        expectNoWaiting([&] { hold.reset(); });
        expectNoWaiting([&] { m_node.reset(); });
        expectNoWaiting([&] { m_engine.reset(); });
        expectNoWaiting([&] { m_audio.reset(); });
    }

    static double residentMegabytes() {
        std::ifstream file("/proc/self/statm");
        double total = 0;
        double resident = 0;
        file >> total >> resident;
        return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576;
    }
};

TEST_P(HungServer, NobodyWaitsForOneThatHungWhileItPlayed) {
    const auto sound = endlessPlayer(stampedSound(loop));
    const auto hold = m_audio->holdOutput();
    ASSERT_FALSE(m_engine->start());
    ASSERT_TRUE(sound->play());
    waitFor(300ms);
    m_server->freeze();
    expectNoCallToWait();
    expectNoWaiting([&] { sound->stop(); });
    expectDestructionNotToWait();
}

TEST_P(HungServer, NobodyWaitsForOneThatHungBefore) {
    m_server->freeze();
    std::unique_ptr<PulseAudioService> late;
    expectNoWaiting([&] { late = std::make_unique<PulseAudioService>(); });
    expectNoWaiting([&] { late.reset(); });
    expectNoWaiting([&] { makeService(); });
    expectNoCallToWait();
    expectDestructionNotToWait();
}

TEST_P(HungServer, AnEndlessLoopGoesOnAfterwardsAndOtherSoundsAreDropped) {
    const auto sound = endlessPlayer(stampedSound(loop));
    const double begin = now();
    ASSERT_TRUE(sound->play());
    waitFor(500ms);
    m_server->freeze();
    const auto crack = player(stampedSound(4410));
    crack->play();
    waitFor(3s);
    m_server->thaw();
    const SoundRecorder recorder(*m_server);
    // What the server still had may come first.
    ASSERT_TRUE(waitUntil([&] { return !crack->isPlaying(); }, 3s));
    waitFor(3s);
    EXPECT_EQ(m_server->streams().size(), 1U);
    expectInPlace(recorder, begin, loop);
    EXPECT_TRUE(sound->isPlaying());
}

TEST_P(HungServer, ASoundThatWasPlayingEndsOnceAndIsNotHeardLater) {
    ASSERT_FALSE(m_engine->start());
    const auto ended = std::make_shared<std::atomic<int>>(0);
    m_node->scheduleBuffer(std::make_shared<PCMBuffer>(stampedSound(10 * 44100)),
                           BufferOptions::Once, [ended] { ++*ended; });
    m_node->play();
    waitFor(300ms);
    m_server->freeze();
    EXPECT_TRUE(waitUntil([&] { return *ended == 1; }, 8s));
    m_server->thaw();
    waitFor(500ms);
    SoundRecorder recorder(*m_server);
    waitFor(3s);
    const Recording recording(recorder.finish());
    EXPECT_FALSE(recording.soundFrom(44100));
    EXPECT_EQ(*ended, 1);
}

TEST_P(HungServer, TypingAtOneTakesNoMemoryAndIsNotHeardAfterwards) {
    const auto crack = player(stampedSound(8820));
    const auto hold = m_audio->holdOutput();
    ASSERT_TRUE(crack->play());
    waitFor(500ms);
    m_server->freeze();
    const auto type = [&](int keys) {
        for (int key = 0; key < keys; ++key) {
            crack->setCurrentTime(0);
            crack->play();
            waitFor(3ms);
        }
    };
    type(200);
    const double before = residentMegabytes();
    type(2000);
    if (memoryIsCounted) {
        EXPECT_LT(residentMegabytes() - before, 4);
    }
    // The last key's sound would be over.
    waitFor(1s);
    m_server->thaw();
    SoundRecorder recorder(*m_server);
    waitFor(4s);
    EXPECT_FALSE(Recording(recorder.finish()).soundFrom(0));
    EXPECT_FALSE(crack->isPlaying());
    ASSERT_TRUE(waitUntil([&] { return !m_engine->start(); }));
    SoundRecorder next(*m_server);
    crack->setCurrentTime(0);
    ASSERT_TRUE(crack->play());
    EXPECT_TRUE(Recording(next.finish()).soundFrom(0));
}

INSTANTIATE_TEST_SUITE_P(On, HungServer, onBothSoundServers(), testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
