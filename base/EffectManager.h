#pragma once

#include <string>

#include "base/NonCopyable.h"
#include "base/Observable.h"

namespace quorvane {

/// An effect that the control panel switches on and off. Main thread only.
class EffectManager : NonCopyable {
public:
    virtual ~EffectManager() = default;

    /// The state of the effect's switch. Only the manager itself writes it.
    [[nodiscard]] virtual const Observable<bool>& isActive() const = 0;
    /// Does nothing when already active or when the effect cannot run, as without its sound.
    virtual void start() = 0;
    /// Does nothing when not running.
    virtual void stop() = 0;

    /// What keeps the effect from starting, for want of a permission that it has asked for, or from
    /// being noticed although it is active. In a few words for the user; empty if nothing does.
    [[nodiscard]] virtual std::string obstacle() { return {}; }

    /// Whether the user has given the permission to listen to the keyboard, as last queried; null
    /// in an effect that does not need it. Code outside the manager that queries the system writes
    /// the answer here.
    [[nodiscard]] virtual Observable<bool>* hasPermission() { return nullptr; }
};

/// The startup experience as the controller sees it: its master switch. It has no start and stop,
/// because its triggers (wake-up, launch at login) are live from launch.
class StartupExperience : NonCopyable {
public:
    virtual ~StartupExperience() = default;

    /// True at every launch; never persisted.
    [[nodiscard]] virtual Observable<bool>& startupSoundEnabled() = 0;
};

} // namespace quorvane
