#include <algorithm>
#include <numbers>

#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// Changes that must not be heard as a click, which is a step from one frame to the next.
class Clickless : public OnSoundServer {
protected:
    // No multiple of it fits the blocks of a server, so that changes come at all phases.
    static constexpr double frequency = 89;
    // At half of full scale it never steps by more than this.
    static constexpr double ownStep = 0.5 * 2 * std::numbers::pi * frequency / 44100;

    /// That tone; it starts and ends at 0.
    [[nodiscard]] static PCMBuffer hum(std::uint32_t frames) {
        PCMBuffer sound = stampedSound(frames);
        for (std::size_t i = 0; i < sound.samples.size(); ++i) {
            const std::size_t frame = i / 2;
            const double time = static_cast<double>(frame) / stereo.sampleRate;
            sound.samples[i] =
                static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * frequency * time));
        }
        return sound;
    }

    [[nodiscard]] static double largestStep(const Recording& recording) {
        double largest = 0;
        for (std::size_t frame = 1; frame < recording.length(); ++frame)
            largest = std::max<double>(
                largest, std::abs(recording.at(frame, 0) - recording.at(frame - 1, 0)));
        return largest;
    }

    /// A ramp of 5 ms from the peak adds 0.0023 a frame to the tone's own step.
    static void expectNoClick(const Recording& recording) {
        ASSERT_TRUE(recording.soundFrom(0));
        EXPECT_LT(largestStep(recording), 2 * ownStep);
    }

    // At all phases of the tone, a hard cut would step by 0.5 at the worst.
    static constexpr std::chrono::milliseconds times[] = {211ms, 157ms, 303ms, 184ms, 226ms, 198ms};
};

TEST_P(Clickless, RestartsAndStopsOfAFilePlayer) {
    const auto clip = player(hum(44100));
    SoundRecorder recorder(*m_server);
    for (const auto time : times) {
        clip->setCurrentTime(0);
        clip->play();
        waitFor(time);
    }
    for (const auto time : times) {
        clip->stop();
        waitFor(100ms);
        clip->play();
        waitFor(time);
    }
    clip->stop();
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    // Two sounds are heard while one fades out.
    EXPECT_LT(largestStep(recording), 3 * ownStep);
}

TEST_P(Clickless, PausesAndStopsOfANode) {
    ASSERT_FALSE(m_engine->start());
    SoundRecorder recorder(*m_server);
    play(*m_node, hum(44100), BufferOptions::Loops);
    for (const auto time : times) {
        waitFor(time);
        m_node->pause();
        waitFor(100ms);
        m_node->play();
    }
    for (const auto time : times) {
        waitFor(time);
        m_node->stop();
        waitFor(100ms);
        play(*m_node, hum(44100), BufferOptions::Loops);
    }
    m_node->stop();
    expectNoClick(Recording(recorder.finish()));
}

TEST_P(Clickless, AnEngineThatStops) {
    for (int count = 0; count < 3; ++count) {
        ASSERT_FALSE(m_engine->start());
        SoundRecorder recorder(*m_server);
        play(*m_node, hum(44100), BufferOptions::Loops);
        expectSoundIn(recorder);
        waitFor(times[count]);
        m_engine->stop();
        expectNoClick(Recording(recorder.finish()));
    }
}

TEST_P(Clickless, ANodeAndAFilePlayerThatAreDestroyed) {
    for (int count = 0; count < 3; ++count) {
        SoundRecorder recorder(*m_server);
        // An engine may keep its nodes.
        auto engine = m_audio->createEngine();
        auto node = m_audio->createPlayerNode();
        engine->attach(node);
        engine->connectToMainMixer(node, stereo);
        ASSERT_FALSE(engine->start());
        play(*node, hum(44100), BufferOptions::Loops);
        waitFor(times[count]);
        node.reset();
        engine.reset();
        waitFor(100ms);
        auto clip = endlessPlayer(hum(44100));
        ASSERT_TRUE(clip->play());
        waitFor(times[count + 3]);
        clip.reset();
        expectNoClick(Recording(recorder.finish()));
    }
}

TEST_P(Clickless, TheEndOfAHold) {
    const auto clip = endlessPlayer(hum(44100));
    auto hold = m_audio->holdOutput();
    SoundRecorder recorder(*m_server);
    ASSERT_TRUE(clip->play());
    expectSoundIn(recorder);
    hold.reset();
    waitFor(200ms);
    hold = m_audio->holdOutput();
    waitFor(200ms);
    clip->stop();
    hold.reset();
    expectNoClick(Recording(recorder.finish()));
}

TEST_P(Clickless, TheVolumeOfAllThatSounds) {
    const auto clip = endlessPlayer(hum(44100));
    ASSERT_FALSE(m_engine->start());
    SoundRecorder recorder(*m_server);
    m_node->setVolume(0);
    play(*m_node, hum(44100), BufferOptions::Loops);
    clip->setVolume(0);
    clip->play();
    for (const float volume : {0.3F, 0.5F, 0.1F, 0.5F, 0.2F}) {
        m_node->setVolume(volume);
        waitFor(124ms);
        clip->setVolume(volume);
        waitFor(137ms);
    }
    const Recording recording(recorder.finish());
    ASSERT_TRUE(recording.soundFrom(0));
    EXPECT_LT(largestStep(recording), 3 * ownStep);
}

INSTANTIATE_TEST_SUITE_P(On, Clickless, onBothSoundServers(), testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
