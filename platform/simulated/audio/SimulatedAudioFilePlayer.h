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

/// A file player on the virtual clock. The service keeps it for as long as it exists itself, so
/// that a test can still ask about a player that its owner has let go. Main thread only.
class SimulatedAudioFilePlayer final
    : public AudioFilePlayer,
      public std::enable_shared_from_this<SimulatedAudioFilePlayer> {
public:
    /// For how long a request to play waits for the output device, in seconds.
    static constexpr double patience = 5;

    SimulatedAudioFilePlayer(RunLoop& runLoop, std::shared_ptr<SimulatedTimeline> timeline,
                             std::shared_ptr<const SimulatedAudioMachine> machine,
                             std::filesystem::path file, std::size_t index);
    ~SimulatedAudioFilePlayer() override;

    [[nodiscard]] double duration() const override;
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

    // What a test asks.

    [[nodiscard]] const std::filesystem::path& file() const { return m_file; }

    /// What was called on the player, in order: "prepare", "volume 0.5", "loops -1",
    /// "currentTime 0", "play", "stop". A "play" without an output device reads
    /// "play without device".
    [[nodiscard]] const std::vector<std::string>& calls() const { return m_calls; }

    /// Its owner has let it go.
    [[nodiscard]] bool isReleased() const { return m_released; }

    // What the service tells it.

    void deviceCame();
    void deviceWent();
    /// The owner's last reference is gone.
    void release();

private:
    /// A sound that is to be heard as soon as there is a device.
    struct Request {
        double time = 0;
        /// Seconds of sound that were left to play then; infinite for a loop.
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
    std::size_t m_index;
    std::shared_ptr<const PCMBuffer> m_buffer;
    std::vector<std::string> m_calls;
    float m_volume = 1;
    int m_numberOfLoops = 0;
    bool m_released = false;
    // Place in the sound while it does not play.
    double m_place = 0;
    std::optional<Request> m_request;
    // The stretch that sounds now.
    std::optional<std::size_t> m_current;
    std::shared_ptr<Timer> m_endTimer;
};

} // namespace quorvane
