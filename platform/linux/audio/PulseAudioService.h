#pragma once

#include <memory>

#include "platform/Audio.h"

namespace quorvane {

class AudioOutput;

/// Sound through the PulseAudio server, or PipeWire's in its place, from files that libsndfile
/// decodes. Begins to connect when it is made; opens a stream when something is to sound.
class PulseAudioService final : public AudioService {
public:
    PulseAudioService();
    ~PulseAudioService() override;

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
    // Shared with the engines, nodes and players, which may live longer.
    std::shared_ptr<AudioOutput> m_output;
};

} // namespace quorvane
