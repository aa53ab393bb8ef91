#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <numbers>
#include <variant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/linux/audio/OpenALAudioFixture.h"
#include "tests/support/Recording.h"

namespace quorvane {
namespace {

using std::chrono::steady_clock;

class OpenALAudioFilePlayers : public OpenALAudio {
protected:
    /// 100 Hz at half of full scale, which never steps by more than `ownStep` from one frame to the
    /// next; it starts at 0.
    [[nodiscard]] static PCMBuffer hum(std::uint32_t frames) {
        PCMBuffer sound = chirp(stereo, frames);
        for (std::size_t i = 0; i < sound.samples.size(); ++i) {
            const std::size_t frame = i / 2;
            const double time = static_cast<double>(frame) / stereo.sampleRate;
            sound.samples[i] =
                static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * 100 * time));
        }
        return sound;
    }

    static constexpr double ownStep = 0.5 * 2 * std::numbers::pi * 100 / 44100;

    [[nodiscard]] std::shared_ptr<AudioFilePlayer> player(const PCMBuffer& sound) {
        const auto path = m_folder.path() / "sound.wav";
        writeWAV(path, sound);
        return std::get<std::shared_ptr<AudioFilePlayer>>(m_audio->createFilePlayer(path));
    }

    [[nodiscard]] std::string errorOf(const std::filesystem::path& path) {
        const auto made = m_audio->createFilePlayer(path);
        const auto* error = std::get_if<AudioError>(&made);
        return error ? error->description : "";
    }

    [[nodiscard]] static bool isGap(const Recording& recording, std::size_t frame) {
        return recording.silenceFrom(frame, 32) == frame;
    }

    /// From one frame to the next. A machine that is too busy to mix leaves gaps of whole blocks;
    /// they are its own fault.
    [[nodiscard]] static double largestStep(const Recording& recording) {
        double largest = 0;
        bool afterGap = true;
        for (std::size_t frame = 1; frame + 32 < recording.length(); ++frame) {
            const double step = std::abs(recording.at(frame, 0) - recording.at(frame - 1, 0));
            if (step < 3 * ownStep) {
                afterGap = afterGap && recording.at(frame, 0) == 0;
                continue;
            }
            if (!afterGap && !isGap(recording, frame))
                largest = std::max(largest, step);
            afterGap = recording.at(frame, 0) == 0;
        }
        return largest;
    }
};

TEST_F(OpenALAudioFilePlayers, RestartsAndStopsWithoutAClick) {
    const auto clip = player(hum(44100));
    PulseRecorder recorder(m_folder.path());
    // At all phases of the hum, a hard cut would step by 0.5 at the worst.
    for (const double time : {0.2113, 0.1571, 0.3027, 0.1839, 0.2257, 0.1983}) {
        clip->setCurrentTime(0);
        clip->play();
        sleep(time);
    }
    clip->stop();
    sleep(0.5);
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    // Two sources sound while one fades out.
    EXPECT_LT(largestStep(recording), 3 * ownStep);
    const std::size_t end = recording.silenceFrom(*begin, 4410);
    EXPECT_LT(std::abs(recording.at(end - 1, 0)), 3 * ownStep) << "the end is cut off";
    EXPECT_FALSE(recording.soundFrom(end));
}

TEST_F(OpenALAudioFilePlayers, TheVolumeOfAllThatSoundsIsChangedWithoutAClick) {
    const auto clip = player(hum(44100));
    clip->setNumberOfLoops(-1);
    const PCMBuffer nodeSound = hum(44100);
    ASSERT_FALSE(m_engine->start());
    PulseRecorder recorder(m_folder.path());
    m_node->setVolume(0);
    m_node->scheduleBuffer(std::make_shared<PCMBuffer>(nodeSound), BufferOptions::Loops, nullptr);
    m_node->play();
    clip->setVolume(0);
    clip->play();
    for (const float volume : {0.3F, 0.5F, 0.1F, 0.5F, 0.2F}) {
        m_node->setVolume(volume);
        sleep(0.1237);
        clip->setVolume(volume);
        sleep(0.1371);
    }
    const Recording recording(recorder.finish());
    ASSERT_TRUE(recording.soundFrom(0));
    EXPECT_LT(largestStep(recording), 3 * ownStep);
}

TEST_F(OpenALAudioFilePlayers, ABurstOfRestartsIsOneSoundAndNothingIsQueued) {
    const PCMBuffer sound = hum(11025);
    const auto clip = player(sound);
    PulseRecorder recorder(m_folder.path());
    const auto begun = steady_clock::now();
    for (int press = 0; press < 64; ++press) {
        clip->setCurrentTime(0);
        clip->play();
    }
    const std::chrono::duration<double> burst = steady_clock::now() - begun;
    ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
    sleep(0.7);
    const Recording recording(recorder.finish());
    const auto begin = recording.soundFrom(0);
    ASSERT_TRUE(begin);
    const std::size_t end = recording.silenceFrom(*begin, 4410);
    EXPECT_FALSE(recording.soundFrom(end)) << "something was played later";
    const double longest = (burst.count() + 0.25) * 44100 + 2 * 2048;
    EXPECT_LT(static_cast<double>(end - *begin), longest);
}

TEST_F(OpenALAudioFilePlayers, TheDeviceIsOpenOnlyWhileItIsNeeded) {
    const auto clip = player(hum(11025));
    EXPECT_EQ(clients(), "");
    ASSERT_TRUE(clip->play());
    EXPECT_NE(clients(), "");
    EXPECT_TRUE(waitUntil([this] { return clients().empty(); }));
    const auto begun = steady_clock::now();
    auto hold = m_audio->holdOutput();
    EXPECT_LT(steady_clock::now() - begun, std::chrono::seconds(1));
    EXPECT_TRUE(waitUntil([this] { return !clients().empty(); }));
    hold.reset();
    EXPECT_TRUE(waitUntil([this] { return clients().empty(); }));
}

TEST_F(OpenALAudioFilePlayers, AHeldStreamRunsOnThroughALongSilence) {
    const auto hold = m_audio->holdOutput();
    const auto corked = [this] {
        const auto log = m_folder.path() / "inputs.txt";
        std::filesystem::remove(log);
        ChildProcess({"pactl", "list", "sink-inputs"}, log).wait();
        return fileText(log);
    };
    ASSERT_TRUE(waitUntil([&] { return corked().find("Corked: no") != std::string::npos; }));
    // A device that is open and not held is paused after 10 s.
    sleep(12);
    EXPECT_NE(corked().find("Corked: no"), std::string::npos);
}

TEST_F(OpenALAudioFilePlayers, AHoldFindsADeviceThatComesLater) {
    m_server.kill();
    const auto hold = m_audio->holdOutput();
    sleep(0.3);
    m_server.start();
    EXPECT_TRUE(waitUntil([this] { return !clients().empty(); }));
}

TEST_F(OpenALAudioFilePlayers, ASoundThatHadToWaitForItsDeviceEndsWhenItWouldHave) {
    const auto clip = player(chirp(stereo, 4 * 44100));
    std::chrono::duration<double> elapsed{};
    steady_clock::time_point begun;
    // The sound server itself may need longer to start on a busy machine than a sound waits.
    for (int attempt = 0; attempt < 5; ++attempt) {
        m_server.kill();
        begun = steady_clock::now();
        ASSERT_FALSE(clip->play());
        sleep(0.5);
        m_server.start();
        elapsed = steady_clock::now() - begun;
        if (elapsed.count() < 2)
            break;
        clip->stop();
        clip->setCurrentTime(0);
    }
    ASSERT_TRUE(waitUntil([&] { return clip->isPlaying(); }, 3s));
    const double place = clip->currentTime();
    elapsed = steady_clock::now() - begun;
    EXPECT_NEAR(place, elapsed.count(), 0.2);
    PulseRecorder recorder(m_folder.path());
    ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
    elapsed = steady_clock::now() - begun;
    EXPECT_NEAR(elapsed.count(), 4, 0.3);
    EXPECT_TRUE(Recording(recorder.finish()).soundFrom(0));
}

TEST_F(OpenALAudioFilePlayers, ASoundServerThatHangsHoldsUpNobody) {
    const auto clip = player(hum(44100));
    const auto hold = m_audio->holdOutput();
    ASSERT_TRUE(waitUntil([this] { return !clients().empty(); }));
    ASSERT_TRUE(clip->play());
    m_server.freeze();
    const auto begun = steady_clock::now();
    for (int press = 0; press < 10; ++press) {
        clip->setCurrentTime(0);
        clip->play();
    }
    clip->stop();
    EXPECT_LT(steady_clock::now() - begun, std::chrono::seconds(2));
    m_server.kill();
}

TEST_F(OpenALAudioFilePlayers, OpeningOnASoundServerThatHangsFailsInSeconds) {
    const auto clip = player(hum(44100));
    m_server.freeze();
    const auto begun = steady_clock::now();
    EXPECT_FALSE(clip->play());
    const auto error = m_engine->start();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->description, "The sound server does not answer.");
    // It waits once; after that it is known to hang.
    for (int attempt = 0; attempt < 100; ++attempt)
        EXPECT_TRUE(m_engine->start());
    EXPECT_LT(steady_clock::now() - begun, std::chrono::seconds(8));
    m_server.kill();
}

TEST_F(OpenALAudioFilePlayers, WhatIsNoUsableSoundIsAnErrorInWords) {
    const auto path = m_folder.write("sound.wav", "");
    EXPECT_THAT(errorOf(path), ::testing::HasSubstr("not a sound file"));
    writeWAV(path, {.format = stereo, .frameCapacity = 0, .frameLength = 0, .samples = {}});
    EXPECT_THAT(errorOf(path), ::testing::HasSubstr("there is no sound in it"));
    EXPECT_THAT(errorOf(m_folder.path()), ::testing::HasSubstr("Is a directory"));
}

TEST_F(OpenALAudioFilePlayers, ASoundOfHoursIsRefusedBeforeItIsDecoded) {
    const auto path = m_folder.path() / "hours.wav";
    writeWAV(path, hum(441));
    // The same header, with three hours of silence behind it that take no room on the disk.
    constexpr std::uint32_t bytes = 3 * 3600 * 44100 * 4U;
    std::filesystem::resize_file(path, 44 + bytes);
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    const auto write = [&file](std::streamoff place, std::uint32_t value) {
        const std::array<char, 4> little{
            static_cast<char>(value & 0xff), static_cast<char>(value >> 8 & 0xff),
            static_cast<char>(value >> 16 & 0xff), static_cast<char>(value >> 24 & 0xff)};
        file.seekp(place).write(little.data(), little.size());
    };
    write(4, bytes + 36);
    write(40, bytes);
    file.close();
    EXPECT_THAT(errorOf(path), ::testing::HasSubstr("the sound is too long"));
}

} // namespace
} // namespace quorvane
