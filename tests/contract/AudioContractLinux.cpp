#include "tests/contract/AudioBackend.h"

#include <chrono>
#include <stdexcept>
#include <thread>

#include "platform/linux/audio/PulseAudioService.h"
#include "tests/support/SoundFiles.h"
#include "tests/support/SoundRecorder.h"
#include "tests/support/SoundServer.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

class LinuxAudioBackend final : public AudioBackend {
public:
    explicit LinuxAudioBackend(SoundServerKind kind)
        : m_server(SoundServer::make(kind, m_folder.path())) {
        m_server->start();
        m_audio = std::make_unique<PulseAudioService>();
        writeWAV(clipFile(), clip());
        makeMP3(goodFile(), chirp({.sampleRate = 44100, .channels = 2}, goodFileFrames));
        copyFirstHalf(goodFile(), truncatedFile());
        writeDamagedFLAC(damagedFile(), clip());
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
            m_server->start();
        else
            m_server->kill();
        // The service notices a moment later.
        const auto isKnown = [&] {
            return present != m_audio->createEngine()->start().has_value();
        };
        if (!waitUntil(isKnown))
            throw std::runtime_error("the server goes or comes unnoticed");
    }

    [[nodiscard]] std::filesystem::path goodFile() const override {
        return m_folder.path() / "good.mp3";
    }

    [[nodiscard]] std::filesystem::path truncatedFile() const override {
        return m_folder.path() / "truncated.mp3";
    }

    [[nodiscard]] std::filesystem::path damagedFile() const override {
        return m_folder.path() / "damaged.flac";
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

    void startRecording() override { m_recorder = std::make_unique<SoundRecorder>(*m_server); }

    [[nodiscard]] std::vector<float> finishRecording() override { return m_recorder->finish(); }

private:
    TemporaryFolder m_folder;
    std::unique_ptr<SoundServer> m_server;
    std::unique_ptr<SoundRecorder> m_recorder;
    std::unique_ptr<PulseAudioService> m_audio;
};

} // namespace

std::unique_ptr<AudioBackend> makePulseAudioBackend() {
    return std::make_unique<LinuxAudioBackend>(SoundServerKind::PulseAudio);
}

std::unique_ptr<AudioBackend> makePipeWireBackend() {
    return std::make_unique<LinuxAudioBackend>(SoundServerKind::PipeWire);
}

PCMBuffer AudioBackend::clip() {
    return chirp({.sampleRate = 44100, .channels = 2}, 22050);
}

} // namespace quorvane
