#include "tests/contract/AudioContract.h"

#include <variant>

namespace quorvane {
namespace {

using ::testing::AllOf;
using ::testing::Ge;
using ::testing::HasSubstr;
using ::testing::Le;

constexpr double clipSeconds = 0.5;

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

    double secondsUntilOver() {
        return secondsUntil([&] { return !m_player->isPlaying(); });
    }

    /// `seconds`, more or less: how exactly a busy machine sleeps is not what is looked at.
    [[nodiscard]] auto isNearly(double seconds) const {
        return AllOf(Ge(seconds - m_side->tolerance()), Le(seconds + 4 * m_side->tolerance()));
    }

    std::shared_ptr<AudioFilePlayer> m_player = open(m_side->clipFile());
};

TEST_P(AudioFilePlayerContract, ANewPlayerIsSilentAtTheStartAtFullVolumeAndPlaysOnce) {
    EXPECT_NEAR(m_player->duration(), clipSeconds, 1e-9);
    EXPECT_EQ(m_player->currentTime(), 0);
    EXPECT_EQ(m_player->volume(), 1);
    EXPECT_EQ(m_player->numberOfLoops(), 0);
    EXPECT_FALSE(m_player->isPlaying());
    EXPECT_TRUE(m_player->prepareToPlay());
    EXPECT_FALSE(m_player->isPlaying());
}

TEST_P(AudioFilePlayerContract, PlaysToTheEndAndIsBackAtTheStart) {
    EXPECT_TRUE(m_player->play());
    EXPECT_TRUE(m_player->isPlaying());
    EXPECT_THAT(secondsUntilOver(), isNearly(clipSeconds));
    EXPECT_EQ(m_player->currentTime(), 0);
    EXPECT_TRUE(m_player->play());
    EXPECT_THAT(secondsUntilOver(), isNearly(clipSeconds));
}

TEST_P(AudioFilePlayerContract, TheCurrentTimeRunsAndIsKeptByStop) {
    const auto player = open(m_side->goodFile());
    ASSERT_TRUE(player->play());
    secondsUntil([&] { return player->currentTime() >= 0.2; });
    player->stop();
    EXPECT_FALSE(player->isPlaying());
    const double place = player->currentTime();
    EXPECT_THAT(place, AllOf(Ge(0.2), Le(player->duration())));
    passTolerance();
    EXPECT_EQ(player->currentTime(), place);
    ASSERT_TRUE(player->play());
    EXPECT_THAT(secondsUntil([&] { return !player->isPlaying(); }),
                isNearly(player->duration() - place));
}

TEST_P(AudioFilePlayerContract, PlayingWhatPlaysChangesNothing) {
    const double begin = m_side->now();
    ASSERT_TRUE(m_player->play());
    pass(0.1);
    EXPECT_TRUE(m_player->play());
    secondsUntilOver();
    EXPECT_THAT(m_side->now() - begin, isNearly(clipSeconds));
}

TEST_P(AudioFilePlayerContract, ThePlaceIsBoundedByTheSound) {
    m_player->setCurrentTime(0.3);
    EXPECT_NEAR(m_player->currentTime(), 0.3, 1e-9);
    m_player->setCurrentTime(-1);
    EXPECT_EQ(m_player->currentTime(), 0);
    m_player->setCurrentTime(99);
    EXPECT_EQ(m_player->currentTime(), m_player->duration());
    m_player->setCurrentTime(0.4);
    ASSERT_TRUE(m_player->play());
    EXPECT_THAT(secondsUntilOver(), isNearly(0.1));
}

TEST_P(AudioFilePlayerContract, ANewPlaceMovesWhatPlays) {
    const auto player = open(m_side->goodFile());
    ASSERT_TRUE(player->play());
    pass(0.2);
    const double begin = m_side->now();
    player->setCurrentTime(0);
    EXPECT_TRUE(player->isPlaying());
    EXPECT_TRUE(player->play());
    secondsUntil([&] { return !player->isPlaying(); });
    EXPECT_THAT(m_side->now() - begin, isNearly(player->duration()));
}

TEST_P(AudioFilePlayerContract, TheVolumeIsBounded) {
    m_player->setVolume(0.5F);
    EXPECT_EQ(m_player->volume(), 0.5F);
    m_player->setVolume(2);
    EXPECT_EQ(m_player->volume(), 1);
    m_player->setVolume(-1);
    EXPECT_EQ(m_player->volume(), 0);
}

TEST_P(AudioFilePlayerContract, LoopsAsOftenAsItIsTold) {
    m_player->setNumberOfLoops(2);
    EXPECT_EQ(m_player->numberOfLoops(), 2);
    ASSERT_TRUE(m_player->play());
    EXPECT_THAT(secondsUntilOver(), isNearly(3 * clipSeconds));
    EXPECT_EQ(m_player->currentTime(), 0);
}

TEST_P(AudioFilePlayerContract, LoopsWithoutEndUntilItIsStopped) {
    m_player->setNumberOfLoops(-1);
    ASSERT_TRUE(m_player->play());
    pass(5 * clipSeconds);
    EXPECT_TRUE(m_player->isPlaying());
    EXPECT_LE(m_player->currentTime(), clipSeconds);
    m_player->stop();
    EXPECT_FALSE(m_player->isPlaying());
}

TEST_P(AudioFilePlayerContract, WhatCannotBeDecodedIsAnError) {
    EXPECT_THAT(errorOf(m_side->missingFile()), HasSubstr("No such file or directory"));
    EXPECT_THAT(errorOf(m_side->nonAudioFile()), HasSubstr("not a sound file"));
    EXPECT_THAT(errorOf(m_side->truncatedFile()), HasSubstr("ends before its length"));
}

TEST_P(AudioFilePlayerContract, IsMadeAndKnowsItsLengthWithoutAnyDevice) {
    m_side->setOutputDevicePresent(false);
    const auto player = open(m_side->clipFile());
    EXPECT_NEAR(player->duration(), clipSeconds, 1e-9);
    EXPECT_TRUE(player->prepareToPlay());
    EXPECT_FALSE(player->play());
    EXPECT_FALSE(player->isPlaying());
    player->stop();
}

TEST_P(AudioFilePlayerContract, ADeviceThatComesSoonIsPlayedOnFromWhereTheSoundWouldBe) {
    const auto player = open(m_side->goodFile());
    player->setNumberOfLoops(7);
    double begin = 0;
    // A real one may need longer to come on a busy machine than a player waits.
    for (int attempt = 0; attempt < 5; ++attempt) {
        m_side->setOutputDevicePresent(false);
        begin = m_side->now();
        ASSERT_FALSE(player->play());
        pass(0.6);
        m_side->setOutputDevicePresent(true);
        if (m_side->now() - begin < 3.5)
            break;
        player->stop();
        player->setCurrentTime(0);
    }
    secondsUntil([&] { return player->isPlaying(); });
    secondsUntil([&] { return !player->isPlaying(); });
    EXPECT_THAT(m_side->now() - begin, isNearly(8 * player->duration()));
}

TEST_P(AudioFilePlayerContract, ASoundThatWouldBeOverIsForgotten) {
    m_side->setOutputDevicePresent(false);
    EXPECT_FALSE(m_player->play());
    pass(clipSeconds + 0.1);
    m_side->setOutputDevicePresent(true);
    pass(1);
    EXPECT_FALSE(m_player->isPlaying());
    EXPECT_TRUE(m_player->play());
}

TEST_P(AudioFilePlayerContract, AfterSomeSecondsWithoutADeviceTheRequestIsForgotten) {
    m_player->setNumberOfLoops(-1);
    m_side->setOutputDevicePresent(false);
    EXPECT_FALSE(m_player->play());
    pass(5.5);
    m_side->setOutputDevicePresent(true);
    pass(1);
    EXPECT_FALSE(m_player->isPlaying());
}

TEST_P(AudioFilePlayerContract, StopForgetsARequest) {
    m_player->setNumberOfLoops(-1);
    m_side->setOutputDevicePresent(false);
    EXPECT_FALSE(m_player->play());
    m_player->stop();
    m_side->setOutputDevicePresent(true);
    pass(1);
    EXPECT_FALSE(m_player->isPlaying());
}

TEST_P(AudioFilePlayerContract, ADeviceThatIsLostAndComesBackIsPlayedOn) {
    m_player->setNumberOfLoops(-1);
    ASSERT_TRUE(m_player->play());
    for (int attempt = 0; attempt < 5; ++attempt) {
        pass(0.1);
        const double begin = m_side->now();
        m_side->setOutputDevicePresent(false);
        secondsUntil([&] { return !m_player->isPlaying(); });
        m_side->setOutputDevicePresent(true);
        if (m_side->now() - begin < 3.5)
            break;
        secondsUntil([&] { return m_player->play(); });
    }
    secondsUntil([&] { return m_player->isPlaying(); });
}

TEST_P(AudioFilePlayerContract, AHoldNeedsNoDeviceAndMayOutliveAllElse) {
    m_side->setOutputDevicePresent(false);
    auto first = audio().holdOutput();
    const auto second = audio().holdOutput();
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    first.reset();
    m_side->setOutputDevicePresent(true);
    EXPECT_TRUE(m_player->play());
    m_player.reset();
}

TEST_P(AudioFilePlayerContract, APlayerMayBeDestroyedWhilePlaying) {
    const auto other = open(m_side->clipFile());
    other->setNumberOfLoops(3);
    const double begin = m_side->now();
    ASSERT_TRUE(m_player->play());
    ASSERT_TRUE(other->play());
    pass(0.1);
    m_player.reset();
    EXPECT_TRUE(other->isPlaying());
    secondsUntil([&] { return !other->isPlaying(); });
    EXPECT_THAT(m_side->now() - begin, isNearly(4 * clipSeconds));
}

INSTANTIATE_TEST_SUITE_P(Sides, AudioFilePlayerContract,
                         ::testing::Values(NamedAudioSide{"Simulated", &makeSimulatedAudioSide},
                                           NamedAudioSide{"Linux", &makeLinuxAudioSide}),
                         [](const auto& side) { return side.param.name; });

} // namespace
} // namespace quorvane
