#include "tests/contract/AudioBackend.h"

#include <chrono>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "platform/linux/audio/PulseAudioService.h"
#include "tests/support/PulseAudioServer.h"
#include "tests/support/SoundFiles.h"
#include "tests/support/SoundRecorder.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class LinuxAudioBackend final : public AudioBackend {
public:
    /// `settings` in the format of OpenAL Soft's .alsoftrc.
    explicit LinuxAudioBackend(std::string_view settings) {
        m_server.start();
        m_folder.write(".alsoftrc", settings);
        // OpenAL reads .alsoftrc from HOME, which the server's constructor has set.
        unsetenv("ALSOFT_CONF"); // NOLINT(concurrency-mt-unsafe): no other thread yet.
        m_audio = std::make_unique<PulseAudioService>();
        writeWAV(clipFile(), clip());
        makeMP3(goodFile(), chirp({.sampleRate = 44100, .channels = 2}, goodFileFrames));
        copyFirstHalf(goodFile(), truncatedFile());
        m_folder.write(nonAudioFile().filename(),
                       "Dear laptop, this is a letter and not a sound.\n");
    }

    AudioService& service() override { return *m_audio; }

    void pass(double seconds) override {
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    }

    [[nodiscard]] double now() const override {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }

    // Generous, for a machine that is busy with other tests.
    [[nodiscard]] double tolerance() const override { return 0.25; }

    void setOutputDevicePresent(bool present) override {
        if (present)
            m_server.start();
        else
            m_server.kill();
    }

    [[nodiscard]] std::filesystem::path goodFile() const override {
        return m_folder.path() / "good.mp3";
    }

    [[nodiscard]] std::filesystem::path truncatedFile() const override {
        return m_folder.path() / "truncated.mp3";
    }

    [[nodiscard]] std::filesystem::path nonAudioFile() const override {
        return m_folder.path() / "letter.mp3";
    }

    [[nodiscard]] std::filesystem::path missingFile() const override {
        return m_folder.path() / "missing.mp3";
    }

    [[nodiscard]] std::filesystem::path clipFile() const override {
        return m_folder.path() / "clip.wav";
    }

    void startRecording() override { m_recorder = std::make_unique<SoundRecorder>(m_server); }

    [[nodiscard]] std::vector<float> finishRecording() override { return m_recorder->finish(); }

private:
    TemporaryFolder m_folder;
    PulseAudioServer m_server{m_folder.path()};
    std::unique_ptr<SoundRecorder> m_recorder;
    std::unique_ptr<PulseAudioService> m_audio;
};

} // namespace

std::unique_ptr<AudioBackend> makeLinuxAudioBackend() {
    return std::make_unique<LinuxAudioBackend>("");
}

std::unique_ptr<AudioBackend> makeSteadyLinuxAudioBackend() {
    return std::make_unique<LinuxAudioBackend>("period_size = 2048\nperiods = 8\n");
}

PCMBuffer AudioBackend::clip() {
    return chirp({.sampleRate = 44100, .channels = 2}, 22050);
}

} // namespace quorvane
