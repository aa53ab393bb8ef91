#pragma once

#include <filesystem>
#include <memory>
#include <variant>

#include "platform/Audio.h"

namespace quorvane {

class OpenALAudioClip;
class OpenALAudioOutput;

/// Plays a sound file on the shared output device. The file is decoded whole and once: a short one
/// by `prepareToPlay`, a long one, which takes some milliseconds and megabytes, when it is first
/// played. More than OpenALAudioClip::mostLoops repetitions count as endless. Main thread only.
class OpenALAudioFilePlayer final : public AudioFilePlayer {
public:
    /// The error also for a file that ends before its length, has no sound in it, or too much to
    /// be kept in memory (256 MiB).
    [[nodiscard]] static std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
    open(const std::shared_ptr<OpenALAudioOutput>& output, const std::filesystem::path& path);
    OpenALAudioFilePlayer(std::shared_ptr<OpenALAudioOutput> output,
                          std::shared_ptr<AudioFile> file);
    ~OpenALAudioFilePlayer() override;

    [[nodiscard]] double duration() const override;
    [[nodiscard]] double currentTime() const override;
    void setCurrentTime(double seconds) override;
    [[nodiscard]] float volume() const override;
    void setVolume(float volume) override;
    [[nodiscard]] int numberOfLoops() const override;
    void setNumberOfLoops(int count) override;
    bool prepareToPlay() override;
    bool play() override;
    void stop() override;
    [[nodiscard]] bool isPlaying() const override;

private:
    bool load();

    std::shared_ptr<OpenALAudioOutput> m_output;
    // Until it has been decoded.
    std::shared_ptr<AudioFile> m_file;
    std::shared_ptr<OpenALAudioClip> m_clip;
};

} // namespace quorvane
