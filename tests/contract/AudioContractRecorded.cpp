#include "tests/contract/AudioContract.h"

#include <atomic>
#include <cmath>
#include <optional>
#include <variant>

#include "tests/support/Recording.h"

namespace quorvane {
namespace {

// Files and recordings have 16 bits or more.
constexpr double inaudible = 1e-4;

/// Promises about what is heard, checked on the recorded output.
class AudioRecordedContract : public AudioContract {
protected:
    [[nodiscard]] Recording finish() { return Recording(m_backend->finishRecording()); }

    void play(const PCMBuffer& sound, BufferOptions options) {
        m_node->scheduleBuffer(std::make_shared<PCMBuffer>(sound), options, nullptr);
        m_node->play();
    }

    /// Half a second at a level of 0.5.
    [[nodiscard]] static PCMBuffer level() {
        PCMBuffer sound = AudioBackend::clip();
        sound.samples.assign(sound.samples.size(), 0.5F);
        return sound;
    }

    [[nodiscard]] std::shared_ptr<AudioFilePlayer> player() {
        return std::get<std::shared_ptr<AudioFilePlayer>>(
            audio().createFilePlayer(m_backend->clipFile()));
    }

    /// Whether `level` is heard for at least 0.1 s.
    [[nodiscard]] static bool holds(const Recording& recording, double level) {
        std::size_t run = 0;
        for (std::size_t frame = 0; frame < recording.length() && run < 4410; ++frame)
            run = std::abs(recording.at(frame, 0) - level) < inaudible ? run + 1 : 0;
        return run == 4410;
    }

    /// Expects the clip `times` times without a gap, from the first sound on. Returns the frame
    /// after that; none when the recording is too short.
    static std::optional<std::size_t> expectClips(const Recording& recording, std::size_t times) {
        const PCMBuffer clip = AudioBackend::clip();
        const auto begin = recording.soundFrom(0);
        EXPECT_TRUE(begin);
        if (!begin)
            return {};
        const std::size_t end = *begin + times * clip.frameLength;
        EXPECT_GE(recording.length(), end);
        if (recording.length() < end)
            return {};
        for (std::size_t place = *begin; place < end; place += clip.frameLength)
            EXPECT_LT(recording.largestDifference(place, clip, 0, clip.frameLength), inaudible);
        return end;
    }
};

TEST_P(AudioRecordedContract, ANodesVolumeChangesWhatSounds) {
    start();
    m_backend->startRecording();
    EXPECT_EQ(m_node->volume(), 1);
    m_node->setVolume(0);
    play(level(), BufferOptions::Loops);
    pass(0.5);
    m_node->setVolume(0.5F);
    EXPECT_EQ(m_node->volume(), 0.5F);
    pass(0.5);
    m_node->setVolume(1);
    pass(0.5);
    const Recording recording = finish();
    EXPECT_TRUE(holds(recording, 0));
    EXPECT_TRUE(holds(recording, 0.25));
    EXPECT_TRUE(holds(recording, 0.5));
}

TEST_P(AudioRecordedContract, ANodesVolumeIsBoundedAndKeptByStop) {
    start();
    m_node->setVolume(-1);
    EXPECT_EQ(m_node->volume(), 0);
    m_node->setVolume(7);
    EXPECT_EQ(m_node->volume(), 1);
    m_node->setVolume(0.5F);
    m_node->stop();
    EXPECT_EQ(m_node->volume(), 0.5F);
    m_backend->startRecording();
    play(level(), BufferOptions::Once);
    pass(0.7);
    EXPECT_TRUE(holds(finish(), 0.25));
}

TEST_P(AudioRecordedContract, ALoopedBufferRepeatsWithoutAGapUntilItIsStopped) {
    start();
    m_backend->startRecording();
    const auto completed = std::make_shared<std::atomic<int>>(0);
    m_node->scheduleBuffer(std::make_shared<PCMBuffer>(AudioBackend::clip()), BufferOptions::Loops,
                           [completed] { ++*completed; });
    m_node->play();
    pass(1.8);
    EXPECT_EQ(*completed, 0);
    m_node->stop();
    secondsUntil([&] { return *completed == 1; });
    pass(0.5);
    const Recording recording = finish();
    const auto threeTimes = expectClips(recording, 3);
    ASSERT_TRUE(threeTimes);
    const std::size_t end = recording.silenceFrom(*threeTimes, 8820);
    EXPECT_LE(end + 8820, recording.length());
    EXPECT_FALSE(recording.soundFrom(end));
}

TEST_P(AudioRecordedContract, ALoopFollowsWhatWasScheduledBeforeWithoutAGap) {
    start();
    m_backend->startRecording();
    play(AudioBackend::clip(), BufferOptions::Once);
    play(AudioBackend::clip(), BufferOptions::Loops);
    pass(1.6);
    expectClips(finish(), 3);
}

TEST_P(AudioRecordedContract, AFilePlayerSoundsOnceFrameForFrame) {
    const auto clip = player();
    m_backend->startRecording();
    ASSERT_TRUE(clip->play());
    pass(1);
    const Recording recording = finish();
    const auto end = expectClips(recording, 1);
    ASSERT_TRUE(end);
    EXPECT_FALSE(recording.soundFrom(*end));
}

TEST_P(AudioRecordedContract, AFilePlayersLoopHasNoGap) {
    const auto clip = player();
    clip->setNumberOfLoops(-1);
    m_backend->startRecording();
    ASSERT_TRUE(clip->play());
    pass(1.6);
    expectClips(finish(), 3);
}

TEST_P(AudioRecordedContract, AFinitelyLoopedSoundHasNoGap) {
    const auto clip = player();
    clip->setNumberOfLoops(2);
    m_backend->startRecording();
    ASSERT_TRUE(clip->play());
    pass(1.7);
    const Recording recording = finish();
    const auto end = expectClips(recording, 3);
    ASSERT_TRUE(end);
    EXPECT_FALSE(recording.soundFrom(*end));
}

TEST_P(AudioRecordedContract, ARestartIsHeardFromItsBeginningAndNothingOfTheOldOneRemains) {
    const auto clip = player();
    m_backend->startRecording();
    ASSERT_TRUE(clip->play());
    pass(0.3);
    clip->setCurrentTime(0);
    EXPECT_TRUE(clip->play());
    pass(1);
    const Recording recording = finish();
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    const std::size_t end = recording.silenceFrom(*begin, 4410);
    ASSERT_GT(end, *begin + 22050);
    EXPECT_FALSE(recording.soundFrom(end));
    // The old one may fade out over a mixing period.
    constexpr std::size_t fade = 4410;
    EXPECT_LT(
        recording.largestDifference(end - 22050 + fade, AudioBackend::clip(), fade, 22050 - fade),
        inaudible);
}

TEST_P(AudioRecordedContract, AFilePlayersVolumeChangesWhatSounds) {
    const auto clip = player();
    clip->setNumberOfLoops(-1);
    clip->setVolume(0.5F);
    m_backend->startRecording();
    ASSERT_TRUE(clip->play());
    pass(0.6);
    clip->setVolume(0);
    pass(0.5);
    const Recording recording = finish();
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    PCMBuffer half = AudioBackend::clip();
    for (float& sample : half.samples)
        sample /= 2;
    EXPECT_LT(recording.largestDifference(*begin, half, 0, 22050), inaudible);
    EXPECT_TRUE(holds(recording, 0));
}

INSTANTIATE_TEST_SUITE_P(Simulated, AudioRecordedContract,
                         testing::Values(&makeSimulatedAudioBackend));
INSTANTIATE_TEST_SUITE_P(LinuxPulseAudio, AudioRecordedContract,
                         testing::Values(&makePulseAudioBackend));
INSTANTIATE_TEST_SUITE_P(LinuxPipeWire, AudioRecordedContract,
                         testing::Values(&makePipeWireBackend));

} // namespace
} // namespace quorvane
