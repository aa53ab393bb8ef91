#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "platform/Audio.h"
#include "platform/linux/audio/OpenALAudioDevice.h"

namespace quorvane {

/// What a file player plays: a sound that stays uploaded while the device lives, and two sources
/// that take turns, so that a restart fades out the old one while the new one already sounds. The
/// output that it plays on guards it with its mutex.
class OpenALAudioClip {
public:
    using Clock = std::chrono::steady_clock;
    using Seconds = std::chrono::duration<double>;

    /// For how long a request to play waits for a device: a sound card takes its time to come back
    /// after the machine has woken up.
    static constexpr Seconds patience{5};
    /// A gain of 0 is reached within one mixing period, which is shorter than this with any
    /// settings that a person would choose; only then may a source be stopped without a click.
    static constexpr std::chrono::milliseconds fadeTime{100};
    /// More repetitions than this count as endless.
    static constexpr int mostLoops = 1000;

    /// Its sound will have this format and so many frames, more than none.
    OpenALAudioClip(const AudioFormat& format, std::uint32_t frames)
        : m_format(format), m_frames(frames) {}

    [[nodiscard]] bool hasSound() const { return m_sound != nullptr; }

    /// Gives it its sound, without which it cannot be played.
    void setSound(std::shared_ptr<const PCMBuffer> sound) { m_sound = std::move(sound); }

    [[nodiscard]] double duration() const;
    [[nodiscard]] double place() const;
    void setPlace(double seconds);

    [[nodiscard]] float volume() const { return m_volume; }

    void setVolume(float volume);

    [[nodiscard]] int loops() const { return m_loops; }

    void setLoops(int count) { m_loops = count; }

    /// Sounds on from its place, unless it sounds already.
    void play(OpenALAudioDevice& device);
    /// Was to sound from `time` on, and is to as soon as there is a device, from where it would be
    /// by then.
    void request(Clock::time_point time);
    /// Falls silent and forgets what was requested.
    void stop();

    [[nodiscard]] bool isSounding() const { return m_sounding; }

    /// Waits for a device.
    [[nodiscard]] bool isRequested() const { return m_request.has_value(); }

    /// Has a source that still fades out.
    [[nodiscard]] bool isFading() const;

    /// Its player is gone: it only fades out.
    void abandon() { m_abandoned = true; }

    [[nodiscard]] bool isAbandoned() const { return m_abandoned; }

    /// When the next thing is to be done for it without anybody calling; none in silence.
    [[nodiscard]] std::optional<Clock::time_point> nextWake() const;
    /// Notices the end of the sound, of fades and of patience.
    void tidy();
    /// Plays what was requested.
    void deviceOpened(OpenALAudioDevice& device);
    /// Gives up all that is on the device. `lost`: what sounds is to go on when one comes back.
    void leaveDevice(bool lost);

private:
    struct Request {
        Clock::time_point time;
        // Sound that was left to play then; infinite for an endless loop.
        Seconds left{0};
    };

    struct Source {
        ALuint name = 0;
        // Buffers in its queue; 0 for a single one that is no queue.
        int queued = 0;
        std::optional<Clock::time_point> fadesUntil;
    };

    [[nodiscard]] Seconds lengthFromPlace() const;
    [[nodiscard]] Seconds left() const;
    void enterDevice(OpenALAudioDevice& device);
    void start(Seconds left);
    void load(Source& source) const;
    void fadeOut();

    AudioFormat m_format;
    std::uint32_t m_frames;
    std::shared_ptr<const PCMBuffer> m_sound;
    float m_volume = 1;
    int m_loops = 0;
    // In seconds, while it does not sound.
    double m_place = 0;
    std::optional<Request> m_request;
    bool m_sounding = false;
    bool m_abandoned = false;
    // Of what sounds now: when it was started, and what was left to play then.
    Request m_started;

    OpenALAudioDevice* m_device = nullptr;
    ALuint m_buffer = 0;
    std::array<Source, 2> m_sources;
    std::size_t m_current = 0;
};

} // namespace quorvane
