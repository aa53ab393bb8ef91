#pragma once

#include <filesystem>
#include <memory>
#include <variant>

#include <sndfile.hh>

#include "platform/Audio.h"

namespace quorvane {

/// A sound file that libsndfile decodes. It reads the encoder's delay and padding from an MP3's
/// LAME tag and leaves them out of the sound; an MP3 without that tag keeps them.
class SndfileAudioFile final : public AudioFile {
public:
    [[nodiscard]] static std::variant<std::shared_ptr<AudioFile>, AudioError>
    open(const std::filesystem::path& path);

    [[nodiscard]] AudioFormat processingFormat() const override;
    [[nodiscard]] std::int64_t length() const override;
    std::optional<AudioError> read(PCMBuffer& buffer) override;

private:
    SndfileAudioFile(SndfileHandle file, std::filesystem::path path);

    SndfileHandle m_file;
    std::filesystem::path m_path;
};

} // namespace quorvane
