#pragma once

#include <atomic>
#include <filesystem>
#include <future>
#include <memory>
#include <thread>
#include <variant>

#include "platform/Audio.h"
#include "platform/linux/audio/AudioOutput.h"

namespace quorvane {

class SndfileAudioFile;

/// Plays a sound file as a track of the output. The file is decoded whole, on a thread of its own,
/// from the moment that the player is made. Main thread only.
class SoundFilePlayer final : public AudioFilePlayer {
public:
    /// The error also for a file that ends before its length, has no sound in it, or too much to
    /// be kept in memory (256 MiB).
    [[nodiscard]] static std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
    open(const std::shared_ptr<AudioOutput>& output, const std::filesystem::path& path);
    SoundFilePlayer(std::shared_ptr<AudioOutput> output, std::shared_ptr<SndfileAudioFile> file);
    ~SoundFilePlayer() override;

    [[nodiscard]] double duration() const override { return m_duration; }

    [[nodiscard]] bool hasSound() const override;
    [[nodiscard]] double currentTime() const override;
    void setCurrentTime(double seconds) override;

    [[nodiscard]] float volume() const override { return m_volume; }

    void setVolume(float volume) override;

    [[nodiscard]] int numberOfLoops() const override { return m_loops; }

    void setNumberOfLoops(int count) override;

    bool prepareToPlay() override { return true; }

    bool play() override;
    void stop() override;
    [[nodiscard]] bool isPlaying() const override;

private:
    void decode(SndfileAudioFile& file);
    void setSound(std::shared_ptr<const PCMBuffer> sound);
    void placeSound();

    std::shared_ptr<AudioOutput> m_output;
    std::shared_ptr<Track> m_track = std::make_shared<Track>(Track::AtEnd::Stops);
    double m_duration;
    float m_volume = 1;
    // These two are guarded by the output's mutex. There is no sound until it is decoded, and if
    // that fails.
    int m_loops = 0;
    std::shared_ptr<const PCMBuffer> m_sound;
    std::atomic<bool> m_cancelled = false;
    // Ready once it is known whether there is a sound.
    std::future<void> m_decoded;
    std::thread m_decoder;
};

} // namespace quorvane
