#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/audio/PulseAudioSilence.h"
#include "tests/platform/linux/audio/OpenALAudioFixture.h"
#include "tests/support/Recording.h"

namespace quorvane {
namespace {

class OpenALAudioHold : public OpenALAudio {
protected:
    [[nodiscard]] static long switchesWithin(double seconds) {
        const long before = voluntarySwitches();
        sleep(seconds);
        return voluntarySwitches() - before;
    }

    /// What the sound server tells of its streams.
    [[nodiscard]] std::string streams() const {
        const auto log = m_folder.path() / "inputs.txt";
        std::filesystem::remove(log);
        ChildProcess({"pactl", "list", "sink-inputs"}, log).wait();
        return fileText(log);
    }

    [[nodiscard]] static std::size_t count(const std::string& text, std::string_view word) {
        std::size_t found = 0;
        for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
            ++found;
        return found;
    }

    /// The sounds' stream rests and the silent one keeps the output running.
    [[nodiscard]] bool rests() const {
        const std::string text = streams();
        return count(text, "Corked: yes") == 1 && count(text, "Corked: no") == 1;
    }

    [[nodiscard]] std::shared_ptr<AudioFilePlayer> player(const PCMBuffer& sound) {
        const auto path = m_folder.path() / "sound.wav";
        writeWAV(path, sound);
        return std::get<std::shared_ptr<AudioFilePlayer>>(m_audio->createFilePlayer(path));
    }
};

TEST_F(OpenALAudioHold, KeepsTheOutputRunningWithoutWakingTheProcessor) {
    const auto hold = m_audio->holdOutput();
    const auto clip = player(chirp(stereo, 22050));
    clip->setNumberOfLoops(-1);
    ASSERT_TRUE(clip->play());
    const long sounding = switchesWithin(2);
    clip->stop();
    ASSERT_TRUE(waitUntil([this] { return rests(); }, 30s));
    // A second of silence at a time, a look whether the device is still there, and whatever a
    // sanitizer adds.
    const long resting = switchesWithin(2);
    EXPECT_LT(resting * 2, sounding);
    EXPECT_TRUE(rests());
}

TEST_F(OpenALAudioHold, TheFirstSoundAfterARestIsHeardFromItsBeginningToItsEnd) {
    const PCMBuffer sound = chirp(stereo, 22050);
    const auto clip = player(sound);
    const auto hold = m_audio->holdOutput();
    for (int rest = 0; rest < 2; ++rest) {
        ASSERT_TRUE(waitUntil([this] { return rests(); }, 30s));
        PulseRecorder recorder(m_folder.path());
        clip->setCurrentTime(0);
        ASSERT_TRUE(clip->play());
        ASSERT_TRUE(waitUntil([&] { return !clip->isPlaying(); }));
        const Recording recording(recorder.finish());
        const auto start = recording.soundFrom(0);
        ASSERT_TRUE(start);
        ASSERT_LE(*start + sound.frameLength, recording.length());
        // As in the file, of 16 bits.
        EXPECT_LT(recording.largestDifference(*start, sound, 0, sound.frameLength), 1e-4);
    }
}

TEST_F(OpenALAudioHold, TheSilentStreamTellsWhenItsServerHasGone) {
    const auto silence = PulseAudioSilence::start();
    ASSERT_TRUE(silence);
    ASSERT_TRUE(waitUntil([&] { return silence->isPlaying(); }));
    m_server.kill();
    EXPECT_TRUE(waitUntil([&] { return !silence->isPlaying(); }));
}

TEST_F(OpenALAudioHold, ReleasedItLeavesNoStreamBehind) {
    auto hold = m_audio->holdOutput();
    ASSERT_TRUE(waitUntil([this] { return rests(); }, 30s));
    hold.reset();
    EXPECT_TRUE(waitUntil([this] { return clients().empty(); }));
}

TEST_F(OpenALAudioHold, RestsAgainOnASoundServerThatCameBack) {
    const auto hold = m_audio->holdOutput();
    ASSERT_TRUE(waitUntil([this] { return rests(); }, 30s));
    m_server.kill();
    m_server.start();
    EXPECT_TRUE(waitUntil([this] { return rests(); }, 30s));
}

} // namespace
} // namespace quorvane
