#pragma once

#include "base/NonCopyable.h"
#include "base/Observable.h"

namespace quorvane {

/// The contract that every switchable effect offers the controller. Main thread only.
class EffectManager : NonCopyable {
public:
    virtual ~EffectManager() = default;

    /// What the effect's switch displays. Only the manager itself writes it.
    [[nodiscard]] virtual const Observable<bool>& isActive() const = 0;
    /// Does nothing when already active or when the effect cannot run, say without its sound.
    virtual void start() = 0;
    /// Harmless when not running.
    virtual void stop() = 0;
};

/// The effect that hears the keyboard, for which it needs the person's permission.
class KeyboardEffect : public EffectManager {
public:
    /// The last known answer to whether keys may be listened to; whoever asks the system anew
    /// stores what it said.
    [[nodiscard]] virtual Observable<bool>& hasPermission() = 0;
};

/// What the controller knows of the startup experience: its master switch. It has no start and
/// stop, because its triggers (waking up, a launch at login) are live from launch.
class StartupExperience : NonCopyable {
public:
    virtual ~StartupExperience() = default;

    /// True at every launch; never persisted.
    [[nodiscard]] virtual Observable<bool>& startupSoundEnabled() = 0;
};

} // namespace quorvane
