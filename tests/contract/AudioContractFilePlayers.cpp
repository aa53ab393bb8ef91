#include "tests/contract/AudioContract.h"

#include <cmath>
#include <variant>

namespace quorvane {
namespace {

using ::testing::HasSubstr;

class AudioFilePlayerContract : public AudioContract {
protected:
    [[nodiscard]] std::shared_ptr<AudioFilePlayer> open(const std::filesystem::path& path) {
        auto made = audio().createFilePlayer(path);
        if (auto* error = std::get_if<AudioError>(&made)) {
            ADD_FAILURE() << error->description;
            return nullptr;
        }
        return std::get<std::shared_ptr<AudioFilePlayer>>(made);
    }

    [[nodiscard]] std::string errorOf(const std::filesystem::path& path) {
        const auto made = audio().createFilePlayer(path);
        const auto* error = std::get_if<AudioError>(&made);
        return error ? error->description : "";
    }

    /// When a call to a player began and returned; its sound begins somewhere in between.
    struct Call {
        double begun = 0;
        double done = 0;
    };

    template <typename Function>
    Call timed(const Function& function) {
        const double begun = m_backend->now();
        function();
        return {.begun = begun, .done = m_backend->now()};
    }

    /// Expects a sound of `seconds` that began with `call` to end in time.
    void expectEnd(const AudioFilePlayer& player, const Call& call, double seconds) {
        secondsUntil([&] { return !player.isPlaying(); });
        // The clocks of sound and system differ a little.
        EXPECT_GE(m_backend->now() - call.begun, seconds - 0.02);
        EXPECT_LE(m_backend->now() - call.done, seconds + m_backend->tolerance());
    }

    /// Expects the player to sound for `seconds` from its current time.
    void expectToSoundFor(AudioFilePlayer& player, double seconds) {
        const Call start = timed([&] { EXPECT_TRUE(player.play()); });
        expectEnd(player, start, seconds);
    }

    std::shared_ptr<AudioFilePlayer> m_player = open(m_backend->clipFile());
};

TEST_P(AudioFilePlayerContract, ANewPlayerIsStoppedAtTheStartAtFullVolumeWithoutLoops) {
    EXPECT_NEAR(m_player->duration(), 0.5, 1e-9);
    EXPECT_EQ(m_player->currentTime(), 0);
    EXPECT_EQ(m_player->volume(), 1);
    EXPECT_EQ(m_player->numberOfLoops(), 0);
    EXPECT_FALSE(m_player->isPlaying());
    EXPECT_TRUE(m_player->prepareToPlay());
    EXPECT_FALSE(m_player->isPlaying());
}

TEST_P(AudioFilePlayerContract, PlaysToTheEndAndIsBackAtTheStart) {
    expectToSoundFor(*m_player, 0.5);
    EXPECT_EQ(m_player->currentTime(), 0);
    expectToSoundFor(*m_player, 0.5);
}

TEST_P(AudioFilePlayerContract, TheCurrentTimeRunsAndIsKeptByStop) {
    const auto player = open(m_backend->goodFile());
    const Call start = timed([&] { ASSERT_TRUE(player->play()); });
    EXPECT_TRUE(player->isPlaying());
    secondsUntil([&] { return player->currentTime() >= 0.2; });
    EXPECT_LE(m_backend->now() - start.done, 0.2 + m_backend->tolerance());
    player->stop();
    EXPECT_FALSE(player->isPlaying());
    const double place = player->currentTime();
    EXPECT_GE(place, 0.2);
    EXPECT_LE(place, m_backend->now() - start.begun + 0.02);
    passTolerance();
    EXPECT_EQ(player->currentTime(), place);
    expectToSoundFor(*player, 1 - place);
}

TEST_P(AudioFilePlayerContract, PlayingTwiceChangesNothing) {
    const Call start = timed([&] { ASSERT_TRUE(m_player->play()); });
    pass(0.3);
    EXPECT_TRUE(m_player->play());
    expectEnd(*m_player, start, 0.5);
}

TEST_P(AudioFilePlayerContract, TheCurrentTimeIsBoundedByTheSound) {
    m_player->setCurrentTime(0.3);
    EXPECT_NEAR(m_player->currentTime(), 0.3, 1e-9);
    m_player->setCurrentTime(-1);
    EXPECT_EQ(m_player->currentTime(), 0);
    m_player->setCurrentTime(99);
    EXPECT_NEAR(m_player->currentTime(), 0.5, 1e-9);
    m_player->setCurrentTime(0.4);
    expectToSoundFor(*m_player, 0.1);
    EXPECT_EQ(m_player->currentTime(), 0);
}

TEST_P(AudioFilePlayerContract, SettingTheCurrentTimeMovesAPlayingSound) {
    const auto player = open(m_backend->goodFile());
    ASSERT_TRUE(player->play());
    pass(0.2);
    const Call restart = timed([&] { player->setCurrentTime(0); });
    EXPECT_TRUE(player->isPlaying());
    EXPECT_TRUE(player->play());
    expectEnd(*player, restart, 1);
}

TEST_P(AudioFilePlayerContract, TheVolumeIsBounded) {
    m_player->setVolume(0.5F);
    EXPECT_EQ(m_player->volume(), 0.5F);
    m_player->setVolume(2);
    EXPECT_EQ(m_player->volume(), 1);
    m_player->setVolume(-1);
    EXPECT_EQ(m_player->volume(), 0);
}

TEST_P(AudioFilePlayerContract, LoopsTheGivenNumberOfTimes) {
    m_player->setNumberOfLoops(2);
    EXPECT_EQ(m_player->numberOfLoops(), 2);
    expectToSoundFor(*m_player, 1.5);
    EXPECT_EQ(m_player->currentTime(), 0);
}

TEST_P(AudioFilePlayerContract, LoopsWithoutEndUntilItIsStopped) {
    m_player->setNumberOfLoops(-1);
    ASSERT_TRUE(m_player->play());
    secondsUntil([&] { return m_player->currentTime() >= 0.25; });
    const double begun = m_backend->now() - m_player->currentTime();
    pass(0.9);
    EXPECT_TRUE(m_player->isPlaying());
    // The current time wraps around with the sound.
    const double turns = (m_backend->now() - begun - m_player->currentTime()) / 0.5;
    EXPECT_GE(turns, 1.5);
    EXPECT_NEAR(turns, std::round(turns), 0.3);
    m_player->stop();
    EXPECT_FALSE(m_player->isPlaying());
}

TEST_P(AudioFilePlayerContract, AFileThatCannotBeDecodedGivesAnError) {
    EXPECT_THAT(errorOf(m_backend->missingFile()), HasSubstr("No such file or directory"));
    EXPECT_THAT(errorOf(m_backend->nonAudioFile()), HasSubstr("not a sound file"));
    EXPECT_THAT(errorOf(m_backend->truncatedFile()), HasSubstr("ends before its length"));
}

TEST_P(AudioFilePlayerContract, AFileThatIsDamagedInItsMiddleHasNoSound) {
    EXPECT_TRUE(m_player->hasSound());
    const auto player = open(m_backend->damagedFile());
    EXPECT_NEAR(player->duration(), 0.5, 1e-9);
    // True while it is being decoded.
    secondsUntil([&] { return !player->hasSound(); });
    EXPECT_FALSE(player->play());
    EXPECT_FALSE(player->isPlaying());
}

TEST_P(AudioFilePlayerContract, OpensAndHasItsLengthWithoutADevice) {
    m_backend->setOutputDevicePresent(false);
    const auto player = open(m_backend->clipFile());
    EXPECT_NEAR(player->duration(), 0.5, 1e-9);
    EXPECT_TRUE(player->prepareToPlay());
    EXPECT_FALSE(player->play());
    EXPECT_FALSE(player->isPlaying());
    player->stop();
}

TEST_P(AudioFilePlayerContract, ADeviceThatComesSoonPlaysFromWhereTheSoundWouldBe) {
    const auto player = open(m_backend->goodFile());
    player->setNumberOfLoops(3);
    Call start;
    // On a busy machine a real device may take longer to come than the sound lasts.
    for (int attempt = 0; attempt < 5; ++attempt) {
        m_backend->setOutputDevicePresent(false);
        start = timed([&] { ASSERT_FALSE(player->play()); });
        pass(0.6);
        m_backend->setOutputDevicePresent(true);
        if (m_backend->now() - start.begun < 2.5)
            break;
        player->stop();
        player->setCurrentTime(0);
    }
    secondsUntil([&] { return player->isPlaying(); });
    // The sound lasts a second and repeats.
    const double turns = m_backend->now() - start.done - player->currentTime();
    EXPECT_NEAR(turns, std::round(turns), 0.2);
    expectEnd(*player, start, 4);
}

TEST_P(AudioFilePlayerContract, ASoundThatWouldBeOverIsDropped) {
    m_backend->setOutputDevicePresent(false);
    EXPECT_FALSE(m_player->play());
    pass(0.6);
    m_backend->setOutputDevicePresent(true);
    pass(1);
    EXPECT_FALSE(m_player->isPlaying());
    EXPECT_TRUE(m_player->play());
}

TEST_P(AudioFilePlayerContract, APlayIsDroppedAfterSomeSecondsWithoutADevice) {
    m_player->setNumberOfLoops(99);
    m_backend->setOutputDevicePresent(false);
    EXPECT_FALSE(m_player->play());
    pass(5.5);
    m_backend->setOutputDevicePresent(true);
    pass(1);
    EXPECT_FALSE(m_player->isPlaying());
}

TEST_P(AudioFilePlayerContract, AnEndlessLoopWaitsForItsDeviceForAsLongAsItTakes) {
    const auto player = open(m_backend->goodFile());
    player->setNumberOfLoops(-1);
    m_backend->setOutputDevicePresent(false);
    const Call start = timed([&] { EXPECT_FALSE(player->play()); });
    pass(6);
    EXPECT_FALSE(player->isPlaying());
    m_backend->setOutputDevicePresent(true);
    secondsUntil([&] { return player->isPlaying(); });
    // The sound lasts a second and repeats.
    const double turns = m_backend->now() - start.done - player->currentTime();
    EXPECT_NEAR(turns, std::round(turns), 0.2);
}

TEST_P(AudioFilePlayerContract, StopDropsAPlayThatWaitsForADevice) {
    m_player->setNumberOfLoops(-1);
    m_backend->setOutputDevicePresent(false);
    EXPECT_FALSE(m_player->play());
    m_player->stop();
    m_backend->setOutputDevicePresent(true);
    pass(1);
    EXPECT_FALSE(m_player->isPlaying());
}

TEST_P(AudioFilePlayerContract, ASoundGoesOnWhenALostDeviceComesBack) {
    m_player->setNumberOfLoops(-1);
    ASSERT_TRUE(m_player->play());
    for (int attempt = 0; attempt < 5; ++attempt) {
        pass(0.1);
        const double begin = m_backend->now();
        m_backend->setOutputDevicePresent(false);
        secondsUntil([&] { return !m_player->isPlaying(); });
        m_backend->setOutputDevicePresent(true);
        if (m_backend->now() - begin < 3.5)
            break;
        secondsUntil([&] { return m_player->play(); });
    }
    secondsUntil([&] { return m_player->isPlaying(); });
}

TEST_P(AudioFilePlayerContract, AHoldNeedsNoDeviceAndMayOutliveThePlayers) {
    m_backend->setOutputDevicePresent(false);
    auto first = audio().holdOutput();
    const auto second = audio().holdOutput();
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    first.reset();
    m_backend->setOutputDevicePresent(true);
    EXPECT_TRUE(m_player->play());
    m_player.reset();
}

TEST_P(AudioFilePlayerContract, APlayerMayBeDestroyedWhilePlaying) {
    const auto other = open(m_backend->clipFile());
    other->setNumberOfLoops(1);
    ASSERT_TRUE(m_player->play());
    const Call start = timed([&] { ASSERT_TRUE(other->play()); });
    pass(0.1);
    m_player.reset();
    EXPECT_TRUE(other->isPlaying());
    expectEnd(*other, start, 1);
}

INSTANTIATE_TEST_SUITE_P(Simulated, AudioFilePlayerContract,
                         testing::Values(&makeSimulatedAudioBackend));
INSTANTIATE_TEST_SUITE_P(LinuxPulseAudio, AudioFilePlayerContract,
                         testing::Values(&makePulseAudioBackend));
INSTANTIATE_TEST_SUITE_P(LinuxPipeWire, AudioFilePlayerContract,
                         testing::Values(&makePipeWireBackend));

} // namespace
} // namespace quorvane
