#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <variant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/audio/PulseAudioService.h"
#include "tests/support/SoundFiles.h"
#include "tests/support/SoundRecorder.h"
#include "tests/support/SoundServer.h"
#include "tests/support/StampedSound.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

/// Sound on a real server, which all tests that derive from this run on each of.
class OnSoundServer : public testing::TestWithParam<SoundServerKind> {
protected:
    static constexpr AudioFormat stereo{.sampleRate = 44100, .channels = 2};
    // Files have 16 bits.
    static constexpr double inaudible = 1e-4;

    void SetUp() override {
        m_server->start();
        makeService();
    }

    void makeService() {
        m_audio = std::make_unique<PulseAudioService>();
        m_engine = m_audio->createEngine();
        m_node = m_audio->createPlayerNode();
        m_engine->attach(m_node);
        m_engine->connectToMainMixer(m_node, stereo);
    }

    [[nodiscard]] std::shared_ptr<AudioFilePlayer> player(const PCMBuffer& sound) {
        const auto path = m_folder.path() / ("sound" + std::to_string(++m_files) + ".wav");
        writeWAV(path, sound);
        return std::get<std::shared_ptr<AudioFilePlayer>>(m_audio->createFilePlayer(path));
    }

    [[nodiscard]] std::shared_ptr<AudioFilePlayer> endlessPlayer(const PCMBuffer& sound) {
        auto made = player(sound);
        made->setNumberOfLoops(-1);
        return made;
    }

    static void play(AudioPlayerNode& node, const PCMBuffer& sound,
                     BufferOptions options = BufferOptions::Once) {
        node.scheduleBuffer(std::make_shared<PCMBuffer>(sound), options, nullptr);
        node.play();
    }

    /// Ends the server, and returns when the program has noticed.
    void killServer() {
        m_server->kill();
        ASSERT_TRUE(waitUntil([this] { return m_engine->start().has_value(); }));
    }

    /// Waits until something is heard.
    static void expectSoundIn(const SoundRecorder& recorder) {
        EXPECT_TRUE(waitUntil([&] { return recorder.recorded().soundFrom(0).has_value(); }, 10s));
    }

    static double now() {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }

    /// Waits until a stamped sound of `loop` frames that began at `begin` is heard, and expects it
    /// where it would be had it never been interrupted. A recording is some 0.2 s behind.
    static void expectInPlace(const SoundRecorder& recorder, double begin, std::size_t loop) {
        const auto latest = [&]() -> std::optional<std::size_t> {
            const Recording recording = recorder.recorded();
            return recording.length() ? placeAt(recording, recording.length() - 1) : std::nullopt;
        };
        std::optional<std::size_t> heard;
        ASSERT_TRUE(waitUntil([&] { return (heard = latest()).has_value(); }, 10s));
        const double length = static_cast<double>(loop) / stereo.sampleRate;
        const double late =
            std::remainder(now() - begin - static_cast<double>(*heard) / stereo.sampleRate, length);
        EXPECT_GT(late, -0.05);
        EXPECT_LT(late, 0.5);
    }

    TemporaryFolder m_folder;
    std::unique_ptr<SoundServer> m_server = SoundServer::make(GetParam(), m_folder.path());
    std::unique_ptr<PulseAudioService> m_audio;
    std::shared_ptr<AudioEngine> m_engine;
    std::shared_ptr<AudioPlayerNode> m_node;

private:
    int m_files = 0;
};

inline auto onBothSoundServers() {
    return testing::Values(SoundServerKind::PulseAudio, SoundServerKind::PipeWire);
}

} // namespace quorvane
