#pragma once

#include <memory>
#include <optional>

#include "base/EffectManager.h"
#include "platform/Platform.h"

namespace quorvane {

/// The startup experience: after a wake-up, or when the program was opened at login, an engine that
/// struggles, with a low rumble under it and a trackpad that vibrates ever faster. Its triggers are
/// live from its making. Main thread only; owned through a shared pointer.
class StartupSoundManager final : public StartupExperience,
                                  public std::enable_shared_from_this<StartupSoundManager> {
public:
    /// Loads the clip, makes the rumble, observes wake-ups and looks whether this is a login.
    [[nodiscard]] static std::shared_ptr<StartupSoundManager> create(const Platform& platform);
    ~StartupSoundManager() override;

    /// Plays the sequence, once: not while it is switched off, not while one plays, not without its
    /// clip. It ends after the clip's length, whatever is switched off meanwhile.
    void playTractor();

    /// A sequence is under way.
    [[nodiscard]] const Observable<bool>& isPlayingTractor() const { return m_isPlayingTractor; }

    [[nodiscard]] Observable<bool>& startupSoundEnabled() override { return m_startupSoundEnabled; }

    /// Loudness of the rumble at the end of its fade-in, 0 to 1. Lowered on the way, it caps the
    /// fade-in, whose steps stay.
    [[nodiscard]] Observable<float>& rumbleVolume() { return m_rumbleVolume; }

    /// The rumble's base frequency in Hz, for the next `generateRumbleBuffer`.
    [[nodiscard]] Observable<double>& rumbleFrequency() { return m_rumbleFrequency; }

    /// Synthesises one second of rumble, as frames of `format` (one channel). A rate that is no
    /// count of frames is a programming error. Without memory there is no rumble.
    void generateRumbleBuffer(double sampleRate, const AudioFormat& format);

    /// None until it could be made.
    [[nodiscard]] const std::shared_ptr<PCMBuffer>& rumbleBuffer() const { return m_rumbleBuffer; }

    // The two effects under the clip, by themselves. Stopping what does not run only prints a line.
    void startRumble();
    void stopRumble();
    void startHaptic();
    void stopHaptic();

    // Whether their timers are there.
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
    std::shared_ptr<Timer> m_rampTimer;
    // Wall clock.
    std::optional<double> m_hapticStartTime;
};

} // namespace quorvane
