#pragma once

#include <functional>
#include <memory>

#include "base/MainThread.h"
#include "base/NonCopyable.h"

namespace quorvane {

/// A timer that the run loop has been given. The run loop keeps a scheduled timer alive: letting go
/// of the handle does not stop it, only `invalidate` does. Main thread only.
class Timer : NonCopyable {
public:
    virtual ~Timer() = default;

    /// Ends the timer for good; it works from inside the timer's own block and may be repeated.
    virtual void invalidate() = 0;
    [[nodiscard]] virtual bool isValid() const = 0;
};

/// The main thread's run loop, main queue and clocks. Main thread only, but for `async`,
/// `isMainThread` and the two clocks, which any thread may use.
class RunLoop : public MainQueue {
public:
    using TimerBlock = std::function<void(Timer&)>;

    /// Schedules `block` to run after `interval` seconds (one that is not above zero counts as 0.1
    /// ms) and, if `repeats`, on the grid start + n * interval from then on. The grid never drifts:
    /// firings that were missed because the thread was busy are skipped, not replayed. Timers that
    /// are due at the same instant fire in the order in which they were scheduled.
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
