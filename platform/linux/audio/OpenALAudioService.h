#pragma once

#include <memory>

#include "platform/Audio.h"

namespace quorvane {

class OpenALAudioOutput;

/// Sound through OpenAL Soft, which knows the sound servers and ALSA, from files that libsndfile
/// decodes. Sets environment variables for OpenAL, so it is to be made before the program has a
/// second thread. Opens no device by itself.
class OpenALAudioService final : public AudioService {
public:
    OpenALAudioService();
    ~OpenALAudioService() override;

    std::shared_ptr<AudioEngine> createEngine() override;
    std::shared_ptr<AudioPlayerNode> createPlayerNode() override;
    std::variant<std::shared_ptr<AudioFile>, AudioError>
    openFile(const std::filesystem::path& path) override;
    std::shared_ptr<PCMBuffer> createBuffer(const AudioFormat& format,
                                            std::uint32_t frameCapacity) override;
    std::optional<AudioFormat> standardFormat(double sampleRate, unsigned channels) override;
    std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
    createFilePlayer(const std::filesystem::path& path) override;
    [[nodiscard]] std::shared_ptr<AudioOutputHold> holdOutput() override;

private:
    // Shared with the engines and nodes, which may live longer.
    std::shared_ptr<OpenALAudioOutput> m_output;
};

} // namespace quorvane
