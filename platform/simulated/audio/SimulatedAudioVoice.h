#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/Audio.h"
#include "platform/RunLoop.h"
#include "platform/simulated/audio/SimulatedSound.h"

namespace quorvane {

/// What a simulated player node does, kept by the service for as long as it exists itself, so that
/// a test can still ask about a node that is gone. Main thread only.
class SimulatedAudioVoice final : public std::enable_shared_from_this<SimulatedAudioVoice>,
                                  NonCopyable {
public:
    enum class State {
        /// Not told to play, and at the start of what is scheduled, if anything.
        Stopped,
        /// Told to play, with something left to sound.
        Sounding,
        /// Told to play, with nothing scheduled: what is scheduled next sounds at once.
        Waiting,
        Paused,
    };

    SimulatedAudioVoice(RunLoop& runLoop, std::shared_ptr<SimulatedTimeline> timeline,
                        std::size_t index);
    ~SimulatedAudioVoice();

    // What a test asks.

    [[nodiscard]] State state() const;
    /// Seconds into the buffer that is at the head of what is scheduled; 0 with nothing scheduled.
    [[nodiscard]] double position() const;

    /// Number of buffers that have not sounded to their end.
    [[nodiscard]] std::size_t scheduledCount() const { return m_scheduled.size(); }

    [[nodiscard]] float volume() const { return m_volume; }

    /// What was called on the node, in order: "attach", "connect 44100/2" (rate and channels),
    /// "schedule", "schedule loops", "volume 0.5", "play", "pause", "stop". A "play" without a
    /// running engine, which does nothing, reads "play without engine".
    [[nodiscard]] const std::vector<std::string>& calls() const { return m_calls; }

    // What the node and its engine tell it.

    void attach();
    void connect(const AudioFormat& format);
    void schedule(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                  AudioPlayerNode::Completion completion);
    void setVolume(float volume);
    void play();
    void pause();
    void stop();

    void engineStarted() { m_engineRunning = true; }

    /// The engine stopped, or its device went: silent, and nothing stays scheduled.
    void engineStopped();
    /// As `stop`, but nobody called it.
    void drop();

private:
    struct Scheduled {
        std::shared_ptr<const PCMBuffer> buffer;
        bool loops = false;
        AudioPlayerNode::Completion completion;
    };

    [[nodiscard]] double framesPerSecond() const;
    [[nodiscard]] double headDuration() const;
    void sound(double startTime);
    void fallSilent();
    void finishHead();

    RunLoop& m_runLoop;
    std::shared_ptr<SimulatedTimeline> m_timeline;
    std::size_t m_index;
    std::vector<std::string> m_calls;
    std::deque<Scheduled> m_scheduled;
    std::optional<AudioFormat> m_format;
    float m_volume = 1;
    bool m_engineRunning = false;
    bool m_playing = false;
    bool m_paused = false;
    // Seconds into the head at which it was last interrupted.
    double m_offset = 0;
    // The stretch that sounds now.
    std::optional<std::size_t> m_current;
    std::shared_ptr<Timer> m_endTimer;
};

} // namespace quorvane
