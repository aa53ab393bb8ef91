#include <algorithm>
#include <array>
#include <atomic>
#include <thread>
#include <vector>

#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// Keeps all processors busy while it lives.
class Load : NonCopyable {
public:
    Load() {
        const unsigned count = std::thread::hardware_concurrency() + 1;
        for (unsigned i = 0; i < count; ++i)
            m_threads.emplace_back([this] {
                while (!m_stopped)
                    ++m_work;
            });
    }

    ~Load() {
        m_stopped = true;
        for (std::thread& thread : m_threads)
            thread.join();
    }

private:
    std::atomic<bool> m_stopped = false;
    std::atomic<unsigned> m_work = 0;
    std::vector<std::thread> m_threads;
};

/// Whatever changes, what lies ahead of the server is mixed again and written over.
class RewrittenSound : public OnSoundServer {
protected:
    /// Too quiet to hide a stamp.
    [[nodiscard]] static PCMBuffer murmur() {
        PCMBuffer sound = stampedSound(4410);
        std::ranges::fill(sound.samples, 1e-4F);
        return sound;
    }
};

TEST_P(RewrittenSound, ALoopHasNeitherJumpNorGapWhileAnotherSoundStartsStopsAndChanges) {
    constexpr std::size_t loop = 88200;
    ASSERT_FALSE(m_engine->start());
    const auto other = m_audio->createPlayerNode();
    m_engine->attach(other);
    m_engine->connectToMainMixer(other, stereo);
    SoundRecorder recorder(*m_server);
    play(*m_node, stampedSound(loop), BufferOptions::Loops);
    {
        const Load load;
        const PCMBuffer sound = murmur();
        for (int change = 0; change < 200; ++change) {
            if (change % 4 == 0)
                play(*other, sound, BufferOptions::Loops);
            else if (change % 4 == 3)
                other->stop();
            else
                other->setVolume(static_cast<float>(change % 10) / 10);
            // Irregular, and now and then several within a period of the server.
            waitFor(std::chrono::milliseconds(change * 7 % 50));
        }
    }
    const Recording recording(recorder.finish());
    ASSERT_TRUE(recording.soundFrom(0));
    EXPECT_GT(recording.length() - *recording.soundFrom(0), 3 * 44100U);
    EXPECT_EQ(jumps(recording, loop), 0U);
}

TEST_P(RewrittenSound, EveryClickIsHeardFromItsFirstFrameToItsLast) {
    constexpr std::size_t length = 1323;
    constexpr int clicks = 60;
    const auto click = player(stampedSound(length));
    const auto hold = m_audio->holdOutput();
    SoundRecorder recorder(*m_server);
    {
        const Load load;
        for (int count = 0; count < clicks; ++count) {
            click->setCurrentTime(0);
            EXPECT_TRUE(click->play());
            waitFor(std::chrono::milliseconds(80 + count * 37 % 120));
        }
    }
    const Recording recording(recorder.finish());
    int whole = 0;
    std::size_t run = 0;
    for (std::size_t frame = 0; frame < recording.length(); ++frame) {
        const auto place = placeAt(recording, frame);
        run = place && *place == run ? run + 1 : 0;
        if (run == length)
            ++whole;
    }
    EXPECT_EQ(whole, clicks);
}

TEST_P(RewrittenSound, ABurstOfRestartsIsOneSoundAndNothingIsQueued) {
    const auto clip = player(stampedSound(11025));
    SoundRecorder recorder(*m_server);
    const double begun = now();
    for (int press = 0; press < 64; ++press) {
        clip->setCurrentTime(0);
        clip->play();
    }
    const double burst = now() - begun;
    ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    const std::size_t end = recording.silenceFrom(*begin, 4410);
    EXPECT_FALSE(recording.soundFrom(end)) << "something was played later";
    EXPECT_LT(static_cast<double>(end - *begin), (burst + 0.25) * 44100 + 4096);
    ASSERT_GE(end, 11025U);
    EXPECT_EQ(placeAt(recording, end - 1), 11024U);
}

INSTANTIATE_TEST_SUITE_P(On, RewrittenSound, onBothSoundServers(),
                         testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
