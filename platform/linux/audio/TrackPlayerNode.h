#pragma once

#include <memory>

#include "platform/Audio.h"
#include "platform/linux/audio/AudioOutput.h"

namespace quorvane {

/// A node that plays as a track of the output, while the engine that it is attached to runs. Main
/// thread only.
class TrackPlayerNode final : public AudioPlayerNode {
public:
    explicit TrackPlayerNode(std::shared_ptr<AudioOutput> output);
    ~TrackPlayerNode() override;

    /// The engine as an identity only; null without one.
    void attachTo(const void* engine);

    void scheduleBuffer(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                        Completion completion) override;
    void play() override;
    void pause() override;
    void stop() override;
    void setVolume(float volume) override;

    [[nodiscard]] float volume() const override { return m_volume; }

private:
    std::shared_ptr<AudioOutput> m_output;
    std::shared_ptr<Track> m_track = std::make_shared<Track>(Track::AtEnd::Waits);
    const void* m_engine = nullptr;
    float m_volume = 1;
    // The last buffer that was scheduled, and its sound at the stream's rate.
    std::shared_ptr<const PCMBuffer> m_buffer;
    std::shared_ptr<const PCMBuffer> m_sound;
};

} // namespace quorvane
