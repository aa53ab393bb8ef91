#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Audio.h"
#include "platform/RunLoop.h"
#include "platform/simulated/audio/SimulatedAudioMachine.h"
#include "platform/simulated/audio/SimulatedSound.h"

namespace quorvane {

/// A file player on the virtual clock. The service keeps it alive, so that tests can inspect it
/// after its owner dropped it. Main thread only.
class SimulatedAudioFilePlayer final
    : public AudioFilePlayer,
      public std::enable_shared_from_this<SimulatedAudioFilePlayer> {
public:
    /// Seconds that a call of `play` waits for the output device; an endless sound waits on.
    static constexpr double patience = 5;

    SimulatedAudioFilePlayer(RunLoop& runLoop, std::shared_ptr<SimulatedTimeline> timeline,
                             std::shared_ptr<const SimulatedAudioMachine> machine,
                             std::filesystem::path file);
    ~SimulatedAudioFilePlayer() override;

    [[nodiscard]] double duration() const override;

    [[nodiscard]] bool hasSound() const override { return m_hasSound; }

    [[nodiscard]] double currentTime() const override;
    void setCurrentTime(double seconds) override;

    [[nodiscard]] float volume() const override { return m_volume; }

    void setVolume(float volume) override;

    [[nodiscard]] int numberOfLoops() const override { return m_numberOfLoops; }

    void setNumberOfLoops(int count) override;
    bool prepareToPlay() override;
    bool play() override;
    void stop() override;

    [[nodiscard]] bool isPlaying() const override { return m_current.has_value(); }

    // For tests.

    [[nodiscard]] const std::filesystem::path& file() const { return m_file; }

    /// The calls, in order: "prepare", "volume 0.5", "loops -1", "currentTime 0", "play", "stop". A
    /// "play" without an output device is recorded as "play without device".
    [[nodiscard]] const std::vector<std::string>& calls() const { return m_calls; }

    void forgetCalls() { m_calls.clear(); }

    // Called by the service.

    void deviceCame();
    void deviceWent();
    /// The owner has dropped its last reference.
    void release();

private:
    /// A call of `play` that waits for a device.
    struct Request {
        double time = 0;
        /// Seconds of sound left to play at that time; infinite for an endless loop.
        double left = 0;
    };

    void note(const std::string& call, double value);
    [[nodiscard]] double lengthFromPlace() const;
    void sound(double left);
    void fallSilent();
    void finish();

    RunLoop& m_runLoop;
    std::shared_ptr<SimulatedTimeline> m_timeline;
    std::shared_ptr<const SimulatedAudioMachine> m_machine;
    std::filesystem::path m_file;
    bool m_hasSound;
    std::shared_ptr<const PCMBuffer> m_buffer;
    std::vector<std::string> m_calls;
    float m_volume = 1;
    int m_numberOfLoops = 0;
    // Position in the sound while it does not play, in seconds.
    double m_place = 0;
    std::optional<Request> m_request;
    // Index of the current sound in the timeline.
    std::optional<std::size_t> m_current;
    std::shared_ptr<Timer> m_endTimer;
};

} // namespace quorvane
