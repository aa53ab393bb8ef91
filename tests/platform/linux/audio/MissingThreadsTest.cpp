#include <chrono>
#include <gtest/gtest.h>
#include <new>
#include <optional>
#include <variant>

#include "platform/linux/audio/PulseAudioService.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/NoThreads.h"
#include "tests/support/RefusedCalls.h"
#include "tests/support/SoundFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

/// A service that can start no thread, open no file or get no memory.
class MissingThreads : public testing::Test {
protected:
    MissingThreads() {
        writeWAV(m_sound, chirp({.sampleRate = 48000, .channels = 2}, 4800));
        CaptureStderr();
    }

    static void expectAsWithoutServer(PulseAudioService& audio) {
        const auto engine = audio.createEngine();
        const auto node = audio.createPlayerNode();
        engine->attach(node);
        const auto hold = audio.holdOutput();
        EXPECT_TRUE(engine->start());
        EXPECT_FALSE(engine->isRunning());
    }

    [[nodiscard]] std::shared_ptr<AudioFilePlayer> makePlayer(PulseAudioService& audio) const {
        return std::get<std::shared_ptr<AudioFilePlayer>>(audio.createFilePlayer(m_sound));
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_sound = m_folder.path() / "chirp.wav";
};

TEST_F(MissingThreads, WithoutTheSoundThreadItIsAsWithoutASoundServer) {
    const NoThreads noThreads;
    PulseAudioService audio;
    expectAsWithoutServer(audio);
    EXPECT_EQ(GetCapturedStderr(), "quorvane: the thread \"sound\" cannot be started: Resource "
                                   "temporarily unavailable\n");
}

TEST_F(MissingThreads, WithoutADecodersThreadThereIsNoSoundToPlay) {
    PulseAudioService audio;
    const NoThreads noThreads;
    const auto player = makePlayer(audio);
    EXPECT_FALSE(player->hasSound());
    EXPECT_FALSE(player->play());
    EXPECT_FALSE(player->isPlaying());
    EXPECT_EQ(GetCapturedStderr(), "quorvane: the thread \"sound decoder\" cannot be started: "
                                   "Resource temporarily unavailable\n");
}

TEST_F(MissingThreads, WithoutDescriptorsItIsAsWithoutASoundServer) {
    ChildProcess child([&] {
        refuse(SYS_eventfd2, EMFILE);
        PulseAudioService audio;
        expectAsWithoutServer(audio);
        EXPECT_FALSE(makePlayer(audio)->play());
        return HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(GetCapturedStderr(), "quorvane: no sound: too few file descriptors\n");
}

TEST_F(MissingThreads, ASoundThreadThatRunsOutOfMemoryEndsWithALine) {
    std::optional<PulseAudioService> audio(std::in_place);
    // One without sound is finished at once; the sound thread calls the completion.
    audio->createPlayerNode()->scheduleBuffer(
        audio->createBuffer({.sampleRate = 48000, .channels = 2}, 0), {},
        [] { throw std::bad_alloc(); });
    const auto engine = audio->createEngine();
    EXPECT_TRUE(waitUntil([&] { return engine->start().has_value(); }));
    waitFor(200ms);
    const auto start = std::chrono::steady_clock::now();
    audio.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s) << "nobody waits for the thread";
    EXPECT_EQ(GetCapturedStderr(), "quorvane: no sound from now on: out of memory\n");
}

} // namespace
} // namespace quorvane
