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

/// The state of a simulated player node. The service keeps it alive, so that tests can inspect it
/// after the node's destruction. Main thread only.
class SimulatedAudioVoice final : public std::enable_shared_from_this<SimulatedAudioVoice>,
                                  NonCopyable {
public:
    enum class State {
        /// Not playing, at the start of what is scheduled, if anything.
        Stopped,
        /// Playing a scheduled buffer.
        Sounding,
        /// Playing with nothing scheduled: the next buffer sounds as soon as it is scheduled.
        Waiting,
        Paused,
    };

    SimulatedAudioVoice(RunLoop& runLoop, std::shared_ptr<SimulatedTimeline> timeline);
    ~SimulatedAudioVoice();

    // For tests.

    [[nodiscard]] State state() const;
    /// Seconds into the first scheduled buffer; 0 if nothing is scheduled.
    [[nodiscard]] double position() const;

    /// Number of buffers that have not played to their end.
    [[nodiscard]] std::size_t scheduledCount() const { return m_scheduled.size(); }

    [[nodiscard]] float volume() const { return m_volume; }

    /// The calls, in order: "attach", "connect 44100/2" (rate and channels), "schedule", "schedule
    /// loops", "volume 0.5", "play", "pause", "stop". A "play" without a running engine, which does
    /// nothing, is recorded as "play without engine".
    [[nodiscard]] const std::vector<std::string>& calls() const { return m_calls; }

    void forgetCalls() { m_calls.clear(); }

    // Called by the node and its engine.

    void attach();
    void connect(const AudioFormat& format);
    void schedule(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                  AudioPlayerNode::Completion completion);
    void setVolume(float volume);
    void play();
    void pause();
    void stop();

    void engineStarted() { m_engineRunning = true; }

    /// The engine stopped or lost its device: silent, drops what is scheduled.
    void engineStopped();
    /// As `stop`, but not recorded as a call.
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
    std::vector<std::string> m_calls;
    std::deque<Scheduled> m_scheduled;
    std::optional<AudioFormat> m_format;
    float m_volume = 1;
    bool m_engineRunning = false;
    bool m_playing = false;
    bool m_paused = false;
    // Seconds into the first scheduled buffer at the last interruption.
    double m_offset = 0;
    // Index of the current sound in the timeline.
    std::optional<std::size_t> m_current;
    std::shared_ptr<Timer> m_endTimer;
};

} // namespace quorvane
