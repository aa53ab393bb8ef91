#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <variant>

#include <sndfile.h>

#include "platform/Audio.h"

namespace quorvane {

/// A sound file that libsndfile decodes. It reads the encoder's delay and padding from an MP3's
/// LAME tag and leaves them out of the sound; an MP3 without that tag keeps them.
class SndfileAudioFile final : public AudioFile {
public:
    [[nodiscard]] static std::variant<std::shared_ptr<SndfileAudioFile>, AudioError>
    open(const std::filesystem::path& path);

    [[nodiscard]] AudioFormat processingFormat() const override;
    [[nodiscard]] std::int64_t length() const override;
    std::optional<AudioError> read(PCMBuffer& buffer) override;
    /// The same; an error also soon after `cancelled` was set, on whatever thread.
    std::optional<AudioError> read(PCMBuffer& buffer, const std::atomic<bool>& cancelled);
    /// Looks for the last frame without decoding those before it: a truncated file still has its
    /// full length in the header. The error if the frame is missing.
    [[nodiscard]] std::optional<AudioError> findEnd();

private:
    struct Closer {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };

    using Handle = std::unique_ptr<SNDFILE, Closer>;

    SndfileAudioFile(Handle file, const SF_INFO& info, std::filesystem::path path);

    [[nodiscard]] AudioError endsTooSoon() const;

    Handle m_file;
    SF_INFO m_info;
    std::filesystem::path m_path;
};

} // namespace quorvane
