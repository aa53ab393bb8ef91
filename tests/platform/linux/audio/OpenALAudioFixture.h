#pragma once

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

#include "platform/linux/audio/OpenALAudioService.h"
#include "tests/support/PulseServer.h"
#include "tests/support/SoundFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

inline void sleep(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

/// How often all threads of this process together have gone to sleep by themselves so far.
inline long voluntarySwitches() {
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

/// Sound through OpenAL Soft on a sound server of the test's own, with a buffer that a busy machine
/// does not run dry: what sounds is looked at, not when.
class OpenALAudio : public ::testing::Test {
public:
    static constexpr AudioFormat stereo{.sampleRate = 44100, .channels = 2};

protected:
    void SetUp() override {
        m_server.start();
        m_folder.write(".alsoftrc", "period_size = 2048\nperiods = 8\n");
        unsetenv("ALSOFT_CONF"); // NOLINT(concurrency-mt-unsafe): no other thread yet.
        // After the server, which has set the environment.
        m_audio = std::make_unique<OpenALAudioService>();
        m_engine = m_audio->createEngine();
        m_node = m_audio->createPlayerNode();
        m_engine->attach(m_node);
    }

    void play(const PCMBuffer& sound) {
        m_engine->connectToMainMixer(m_node, sound.format);
        m_node->scheduleBuffer(std::make_shared<PCMBuffer>(sound), BufferOptions::Once, nullptr);
        m_node->play();
    }

    /// A line for each stream that the sound server plays.
    [[nodiscard]] std::string clients() const {
        const auto log = m_folder.path() / "clients.txt";
        std::filesystem::remove(log);
        ChildProcess({"pactl", "list", "short", "sink-inputs"}, log).wait();
        return fileText(log);
    }

    TemporaryFolder m_folder;
    PulseServer m_server{m_folder.path()};
    std::unique_ptr<OpenALAudioService> m_audio;
    std::shared_ptr<AudioEngine> m_engine;
    std::shared_ptr<AudioPlayerNode> m_node;
};

} // namespace quorvane
