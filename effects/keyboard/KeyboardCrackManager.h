#pragma once

#include <memory>

#include "base/EffectManager.h"
#include "platform/Platform.h"

namespace quorvane {

/// Lets every key press anywhere on the machine crack, at most once in 0.15 s. It hears that a key
/// went down and nothing about which one. Main thread only; owned through a shared pointer.
class KeyboardCrackManager final : public KeyboardEffect,
                                   public std::enable_shared_from_this<KeyboardCrackManager> {
public:
    /// The instance made last, through which the tap's callback, which carries no context, reaches
    /// its manager. It keeps nothing alive.
    static std::weak_ptr<KeyboardCrackManager> shared;

    /// Loads the sound and becomes `shared`.
    [[nodiscard]] static std::shared_ptr<KeyboardCrackManager> create(const Platform& platform);
    ~KeyboardCrackManager() override;

    /// Listens from now on. Without permission the system asks the person, and 3 s later there is
    /// one more attempt, which nothing calls off; after that it takes another `start`. Does nothing
    /// without a sound.
    void start() override;
    void stop() override;

    /// The tap is installed and enabled.
    [[nodiscard]] const Observable<bool>& isActive() const override { return m_isActive; }

    [[nodiscard]] Observable<bool>& hasPermission() override { return m_hasPermission; }

    /// One crack from its beginning, which cuts the one before short; none less than 0.15 s after
    /// the last.
    void playCrack();

private:
    explicit KeyboardCrackManager(const Platform& platform);
    void loadSound();
    void requestPermission();
    void retry();
    void startEventTap();
    static const TapEvent& handleTapEvent(const TapEvent& event);

    Platform m_platform;
    Observable<bool> m_isActive;
    Observable<bool> m_hasPermission;
    std::shared_ptr<EventTap> m_eventTap;
    std::shared_ptr<TapSource> m_runLoopSource;
    std::shared_ptr<AudioFilePlayer> m_player;
    // Media time. Zero lets the first crack after launch through.
    double m_lastPlayTime = 0;
    // The first key after a rest is to be as fast as the hundredth.
    std::shared_ptr<AudioOutputHold> m_outputHold;
};

} // namespace quorvane
