#include <gtest/gtest.h>
#include <variant>

#include "platform/linux/audio/PulseAudioService.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RefusedCalls.h"
#include "tests/support/SoundFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

/// A service that could start no thread, or open no file of its own.
class MissingThreads : public testing::Test {
protected:
    MissingThreads() {
        writeWAV(m_sound, chirp({.sampleRate = 48000, .channels = 2}, 4800));
        CaptureStderr();
    }

    /// 0 if everything is as without a sound server.
    [[nodiscard]] static int checkSilence(PulseAudioService& audio) {
        const auto engine = audio.createEngine();
        const auto node = audio.createPlayerNode();
        engine->attach(node);
        const auto hold = audio.holdOutput();
        return engine->start() && !engine->isRunning() ? 0 : 1;
    }

    [[nodiscard]] std::shared_ptr<AudioFilePlayer> makePlayer(PulseAudioService& audio) const {
        return std::get<std::shared_ptr<AudioFilePlayer>>(audio.createFilePlayer(m_sound));
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_sound = m_folder.path() / "chirp.wav";
};

TEST_F(MissingThreads, WithoutTheSoundThreadItIsAsWithoutASoundServer) {
    ChildProcess child([&] {
        refuseThreads();
        PulseAudioService audio;
        return checkSilence(audio);
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(GetCapturedStderr(), "quorvane: the thread \"sound\" cannot be started: Resource "
                                   "temporarily unavailable\n");
}

TEST_F(MissingThreads, WithoutADecodersThreadThereIsNoSoundToPlay) {
    ChildProcess child([&] {
        PulseAudioService audio;
        refuseThreads();
        const auto player = makePlayer(audio);
        return player->hasSound() || player->play() || player->isPlaying() ? 1 : 0;
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(GetCapturedStderr(), "quorvane: the thread \"sound decoder\" cannot be started: "
                                   "Resource temporarily unavailable\n");
}

TEST_F(MissingThreads, WithoutDescriptorsItIsAsWithoutASoundServer) {
    ChildProcess child([&] {
        refuse(SYS_eventfd2, EMFILE);
        PulseAudioService audio;
        return checkSilence(audio) + (makePlayer(audio)->play() ? 1 : 0);
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(GetCapturedStderr(), "quorvane: no sound: too few file descriptors\n");
}

} // namespace
} // namespace quorvane
