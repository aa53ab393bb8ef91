#pragma once

#include "platform/Audio.h"

namespace quorvane {

/// Sound through AVFAudio. An engine whose output device changes stops, and drops what was
/// scheduled on its nodes.
class MacAudio final : public AudioService {
public:
    std::shared_ptr<AudioEngine> createEngine() override;
    std::shared_ptr<AudioPlayerNode> createPlayerNode() override;
    std::variant<std::shared_ptr<AudioFile>, AudioError>
    openFile(const std::filesystem::path& path) override;
    std::shared_ptr<PCMBuffer> createBuffer(const AudioFormat& format,
                                            std::uint32_t frameCapacity) override;
    [[nodiscard]] std::optional<AudioFormat> standardFormat(double sampleRate,
                                                            unsigned channels) override;
    std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
    createFilePlayer(const std::filesystem::path& path) override;
    [[nodiscard]] std::shared_ptr<AudioOutputHold> holdOutput() override;
};

} // namespace quorvane
