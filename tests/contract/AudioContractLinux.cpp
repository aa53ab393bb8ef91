#include "tests/contract/AudioContractSide.h"

#include <chrono>
#include <thread>

#include "platform/linux/OpenALAudioService.h"
#include "tests/contract/PulseServer.h"
#include "tests/contract/SoundFiles.h"

namespace quorvane {

namespace {

class LinuxAudioSide final : public AudioContractSide {
public:
    LinuxAudioSide() {
        m_server.start();
        makeMP3(goodFile(), chirp({.sampleRate = 44100, .channels = 2}, goodFileFrames));
        copyFirstHalf(goodFile(), truncatedFile());
        writeText(nonAudioFile(), "Dear laptop, this is a letter and not a sound.\n");
    }

    AudioService& service() override { return m_audio; }

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

private:
    TemporaryFolder m_folder;
    PulseServer m_server{m_folder.path()};
    OpenALAudioService m_audio;
};

} // namespace

std::unique_ptr<AudioContractSide> makeLinuxAudioSide() {
    return std::make_unique<LinuxAudioSide>();
}

} // namespace quorvane
