#pragma once

#include <memory>
#include <optional>

#include "base/EffectManager.h"
#include "platform/Platform.h"

namespace quorvane {

/// The startup experience: after a wake-up, or a launch at login, the sound of a struggling engine
/// with a low rumble, and trackpad pulses that get faster. Its triggers are live from its creation.
/// Main thread only; owned through a shared pointer.
class StartupSoundManager final : public StartupExperience,
                                  public std::enable_shared_from_this<StartupSoundManager> {
public:
    /// Loads the clip, makes the rumble, observes wake-ups and checks for a launch at login.
    [[nodiscard]] static std::shared_ptr<StartupSoundManager> create(const Platform& platform);
    ~StartupSoundManager() override;

    /// Plays the sequence once, unless it is switched off, already playing or without its clip. It
    /// ends after the clip's length, even if it is switched off meanwhile.
    void playTractor();

    /// Whether a sequence is playing.
    [[nodiscard]] const Observable<bool>& isPlayingTractor() const { return m_isPlayingTractor; }

    [[nodiscard]] Observable<bool>& startupSoundEnabled() override { return m_startupSoundEnabled; }

    /// Volume of the rumble at the end of its fade-in, 0 to 1. Lowered during the fade-in, it caps
    /// the volume without changing the steps.
    [[nodiscard]] Observable<float>& rumbleVolume() { return m_rumbleVolume; }

    /// The rumble's base frequency in Hz, for the next `generateRumbleBuffer`.
    [[nodiscard]] Observable<double>& rumbleFrequency() { return m_rumbleFrequency; }

    /// Length of the rumble's fade-in and of the pulses' ramp in seconds, above 0. Changed
    /// meanwhile, it changes the pulses at once, and the next fade-in.
    [[nodiscard]] Observable<double>& rampUpDuration() { return m_rampUpDuration; }

    /// Synthesises one second of rumble in `format` (one channel); none if the buffer cannot be
    /// made. A sample rate that is no valid number of frames (see rumbleFrameCount) ends the
    /// program.
    void generateRumbleBuffer(double sampleRate, const AudioFormat& format);

    /// Null until `generateRumbleBuffer` has made it.
    [[nodiscard]] const std::shared_ptr<PCMBuffer>& rumbleBuffer() const { return m_rumbleBuffer; }

    // The two parts that accompany the clip. Stopping one that is not running only prints a line.
    void startRumble();
    void stopRumble();
    void startHaptic();
    void stopHaptic();

    // Whether their timers are scheduled.
    [[nodiscard]] bool isRamping() const { return m_rampTimer != nullptr; }

    [[nodiscard]] bool isPulsing() const { return m_hapticTimer != nullptr; }

private:
    explicit StartupSoundManager(const Platform& platform);
    void begin();
    void loadSound();
    void connectRumble();
    void observeWake();
    void playOnLoginBoot();
    void endSequence();
    void startRamp();
    void stepRamp(Timer& timer, int step, float volumeStep);
    void pulse();

    Platform m_platform;
    Observable<bool> m_isPlayingTractor;
    Observable<bool> m_startupSoundEnabled{true};
    Observable<float> m_rumbleVolume{1.0F};
    Observable<double> m_rumbleFrequency{25.0};
    std::shared_ptr<AudioFilePlayer> m_tractorPlayer;
    std::optional<NotificationCenter::Token> m_wakeObserver;
    std::shared_ptr<AudioEngine> m_rumbleEngine;
    std::shared_ptr<AudioPlayerNode> m_rumblePlayer;
    std::shared_ptr<PCMBuffer> m_rumbleBuffer;
    std::shared_ptr<Timer> m_hapticTimer;
    Observable<double> m_rampUpDuration{3.0};
    std::shared_ptr<Timer> m_rampTimer;
    // Wall clock.
    std::optional<double> m_hapticStartTime;
};

} // namespace quorvane
