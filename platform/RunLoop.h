#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "base/MainThread.h"
#include "base/NonCopyable.h"

namespace quorvane {

/// A scheduled timer. The run loop keeps it alive: dropping the handle does not stop it, only
/// `invalidate` does. Main thread only.
class Timer : NonCopyable {
public:
    virtual ~Timer() = default;

    /// Stops the timer for good. May be called from the timer's own block, and more than once.
    virtual void invalidate() = 0;
    [[nodiscard]] virtual bool isValid() const = 0;
};

/// Invalidates the timer, if there is one, and resets the handle.
inline void invalidate(std::shared_ptr<Timer>& timer) {
    if (const auto held = std::exchange(timer, nullptr))
        held->invalidate();
}

/// The main thread's run loop, main queue and clocks. Main thread only, except `async`,
/// `isMainThread` and the two clocks, which any thread may call.
class RunLoop : public MainQueue {
public:
    using TimerBlock = std::function<void(Timer&)>;

    /// Schedules `block` to run after `interval` seconds (0 or less counts as 0.1 ms) and, if
    /// `repeats`, at start + n * interval from then on, without drift. Firings missed because the
    /// thread was busy are skipped. Timers due at the same instant fire in the order of scheduling.
    virtual std::shared_ptr<Timer> scheduledTimer(double interval, bool repeats,
                                                  TimerBlock block) = 0;

    /// Runs `block` once on the main queue, `delay` seconds from now. It cannot be cancelled.
    virtual void asyncAfter(double delay, std::function<void()> block) = 0;

    /// Monotonic seconds since an arbitrary start; does not advance while the machine sleeps.
    [[nodiscard]] virtual double currentMediaTime() const = 0;

    /// Wall-clock seconds since 1970-01-01 00:00 UTC; may jump when the clock is set.
    [[nodiscard]] virtual double currentDate() const = 0;
};

} // namespace quorvane
