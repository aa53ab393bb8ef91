#include <filesystem>
#include <fstream>
#include <iostream>
#include <string_view>

#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// When the stream exists and runs, and what it costs.
class HeldOutput : public OnSoundServer {
protected:
    /// How often a second all threads of this process together go to sleep by themselves.
    [[nodiscard]] static double wakeUpsASecond() {
        const long before = voluntarySwitches();
        waitFor(3s);
        return static_cast<double>(voluntarySwitches() - before) / 3;
    }

    [[nodiscard]] bool isOpen() const { return !m_server->streams().empty(); }

    [[nodiscard]] bool isRunning() const {
        const auto streams = m_server->streams();
        return streams.size() == 1 && !streams[0].isCorked;
    }

    /// Expects a new sound to be heard whole.
    void expectClick(AudioFilePlayer& click, std::size_t length) {
        SoundRecorder recorder(*m_server);
        ASSERT_TRUE(click.play());
        ASSERT_TRUE(waitUntil([&] { return !click.isPlaying(); }));
        const Recording recording(recorder.finish());
        const auto begin = recording.soundFrom(0);
        ASSERT_TRUE(begin);
        EXPECT_EQ(placeAt(recording, *begin), 0U);
        ASSERT_EQ(recording.silenceFrom(*begin, 1000) - *begin, length);
        EXPECT_EQ(jumps(recording.part(*begin, length), length), 0U);
    }

private:
    [[nodiscard]] static long voluntarySwitches() {
        long sum = 0;
        for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
            std::ifstream status(task.path() / "status");
            constexpr std::string_view key = "voluntary_ctxt_switches:";
            for (std::string line; std::getline(status, line);)
                if (line.starts_with(key))
                    sum += std::stol(line.substr(key.size()));
        }
        return sum;
    }
};

TEST_P(HeldOutput, WithoutSoundItRunsOnAndHardlyWakesTheProcessor) {
    const auto hold = m_audio->holdOutput();
    ASSERT_TRUE(waitUntil([this] { return isRunning(); }));
    waitFor(2s);
    const double wakeUps = wakeUpsASecond();
    std::cout << wakeUps << " wake-ups a second\n";
    EXPECT_LT(wakeUps, 40);
    waitFor(9s);
    EXPECT_TRUE(isRunning());
}

TEST_P(HeldOutput, AnEndlessLoopHardlyWakesTheProcessor) {
    const auto loop = endlessPlayer(stampedSound(88200));
    ASSERT_TRUE(loop->play());
    waitFor(2s);
    const double wakeUps = wakeUpsASecond();
    std::cout << wakeUps << " wake-ups a second\n";
    EXPECT_LT(wakeUps, 40);
}

TEST_P(HeldOutput, ARunningEngineWithNothingToPlayHardlyWakesTheProcessor) {
    ASSERT_FALSE(m_engine->start());
    waitFor(12s);
    EXPECT_LT(wakeUpsASecond(), 40);
    EXPECT_TRUE(m_engine->isRunning());
    SoundRecorder recorder(*m_server);
    play(*m_node, stampedSound(4410));
    waitFor(300ms);
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    EXPECT_EQ(placeAt(recording, *begin), 0U);
}

TEST_P(HeldOutput, TheStreamRunsOnlyWhileSomethingNeedsItAndIsClosedLater) {
    EXPECT_FALSE(isOpen());
    const auto clip = player(stampedSound(11025));
    EXPECT_FALSE(isOpen());
    ASSERT_TRUE(clip->play());
    EXPECT_TRUE(waitUntil([this] { return isRunning(); }));
    EXPECT_TRUE(waitUntil([this] { return !isRunning(); }, 6s));
    auto hold = m_audio->holdOutput();
    EXPECT_TRUE(waitUntil([this] { return isRunning(); }));
    hold.reset();
    EXPECT_TRUE(waitUntil([this] { return !isRunning(); }, 6s));
    ASSERT_FALSE(m_engine->start());
    play(*m_node, stampedSound(11025));
    EXPECT_TRUE(waitUntil([this] { return isRunning(); }));
    m_engine->stop();
    EXPECT_TRUE(waitUntil([this] { return !isRunning(); }, 6s));
    // It rests for a while before it is closed.
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); }, 40s));
}

TEST_P(HeldOutput, AHoldFindsAServerThatComesLater) {
    killServer();
    const auto hold = m_audio->holdOutput();
    waitFor(300ms);
    m_server->start();
    EXPECT_TRUE(waitUntil([this] { return isRunning(); }));
}

TEST_P(HeldOutput, AHoldGoesOnOnAServerThatCameBack) {
    const auto hold = m_audio->holdOutput();
    ASSERT_TRUE(waitUntil([this] { return isRunning(); }));
    m_server->kill();
    m_server->start();
    EXPECT_TRUE(waitUntil([this] { return isRunning(); }));
}

TEST_P(HeldOutput, TheFirstSoundAfterALongSilenceIsHeardWhole) {
    constexpr std::uint32_t length = 2205;
    const auto click = player(stampedSound(length));
    const auto hold = m_audio->holdOutput();
    for (int rest = 0; rest < 2; ++rest) {
        waitFor(4s);
        expectClick(*click, length);
    }
}

TEST_P(HeldOutput, TheFirstSoundOnAnOutputThatRestsIsHeardWhole) {
    constexpr std::uint32_t length = 2205;
    const auto click = player(stampedSound(length));
    expectClick(*click, length);
    // Corked.
    ASSERT_TRUE(waitUntil([this] { return !isRunning(); }));
    expectClick(*click, length);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }, 40s));
    expectClick(*click, length);
}

INSTANTIATE_TEST_SUITE_P(On, HeldOutput, onBothSoundServers(), testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
