#include "tests/contract/AudioBackend.h"

#include <vector>

#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/simulated/audio/SimulatedAudio.h"
#include "tests/support/SoundFiles.h"

namespace quorvane {

namespace {

class SimulatedAudioBackend final : public AudioBackend {
public:
    SimulatedAudioBackend() {
        const AudioFormat format{.sampleRate = 44100, .channels = 2};
        const std::vector<float> half(static_cast<std::size_t>(goodFileFrames), 0.25F);
        m_audio.addFile(goodFile(), format, chirp(format, goodFileFrames).samples);
        m_audio.addFile(clipFile(), clip().format, clip().samples);
        m_audio.addTruncatedFile(truncatedFile(), format, half, goodFileFrames);
        m_audio.addDamagedFile(damagedFile(), clip().format, clip().samples);
        m_audio.addNonAudioFile(nonAudioFile());
    }

    AudioService& service() override { return m_audio; }

    void pass(double seconds) override { m_runLoop.advance(seconds); }

    [[nodiscard]] double now() const override { return m_runLoop.currentMediaTime(); }

    [[nodiscard]] double tolerance() const override { return 0.006; }

    void setOutputDevicePresent(bool present) override { m_audio.setOutputDevicePresent(present); }

    [[nodiscard]] std::filesystem::path goodFile() const override { return "/sounds/good.mp3"; }

    [[nodiscard]] std::filesystem::path truncatedFile() const override {
        return "/sounds/truncated.mp3";
    }

    [[nodiscard]] std::filesystem::path damagedFile() const override {
        return "/sounds/damaged.flac";
    }

    [[nodiscard]] std::filesystem::path nonAudioFile() const override {
        return "/sounds/letter.mp3";
    }

    [[nodiscard]] std::filesystem::path missingFile() const override {
        return "/sounds/missing.mp3";
    }

    [[nodiscard]] std::filesystem::path clipFile() const override { return "/sounds/clip.wav"; }

    void startRecording() override { m_recordedFrom = now(); }

    [[nodiscard]] std::vector<float> finishRecording() override {
        return m_audio.render(m_recordedFrom, now(), {.sampleRate = 44100, .channels = 2});
    }

private:
    double m_recordedFrom = 0;
    SimulatedRunLoop m_runLoop;
    SimulatedAudio m_audio{m_runLoop};
};

} // namespace

std::unique_ptr<AudioBackend> makeSimulatedAudioBackend() {
    return std::make_unique<SimulatedAudioBackend>();
}

} // namespace quorvane
