#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/TimerQueue.h"

namespace quorvane {

/// A run loop on a virtual clock that only `advance` and `block` move. `advance` fires timers in
/// the order of their deadlines, ties in the order of scheduling, with the clock at each deadline;
/// blocks on the main queue run before the clock moves on. Timers scheduled meanwhile fire too if
/// they are due by the end.
class SimulatedRunLoop final : public RunLoop {
public:
    std::shared_ptr<Timer> scheduledTimer(double interval, bool repeats, TimerBlock block) override;
    void async(std::function<void()> block) override;
    void asyncAfter(double delay, std::function<void()> block) override;
    [[nodiscard]] bool isMainThread() const override;
    [[nodiscard]] double currentMediaTime() const override;
    [[nodiscard]] double currentDate() const override;

    /// Runs for `seconds` (not negative).
    void advance(double seconds);
    /// Runs the blocks on the main queue; the clock does not move.
    void runMainQueue();
    /// Moves the clock by `seconds` as if the main thread were busy: nothing fires until `advance`.
    void block(double seconds);
    /// Moves only the wall clock by `seconds`, as while the machine sleeps.
    void sleep(double seconds);
    /// Sets only the wall clock.
    void setDate(double secondsSince1970);
    /// While held, the main queue runs no blocks.
    void holdMainQueue(bool held);

    /// Number of timers and delayed blocks that will still fire.
    [[nodiscard]] std::size_t pendingCount() const { return m_queue.pendingCount(); }

    /// Media time of the next deadline; none if nothing is scheduled.
    [[nodiscard]] std::optional<double> nextDeadline() const;

private:
    const std::thread::id m_mainThread = std::this_thread::get_id();
    TimerQueue m_queue;
    // The media clock.
    TimerQueue::Nanoseconds m_now = 0;
    // Wall clock minus media clock.
    TimerQueue::Nanoseconds m_dateOffset = toNanoseconds(1.7e9);
    bool m_queueHeld = false;

    // Any thread.
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_mainQueue;
};

} // namespace quorvane
