#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/TimerQueue.h"

namespace quorvane {

/// A run loop on a virtual clock that never moves by itself. The rules:
/// - `advance` runs due work in time order, ties in the order of registration, with the clock at
///   each piece's own instant; blocks on the main queue run before the clock moves on;
/// - an invalidated timer does not fire, however little time is left;
/// - work that is scheduled on the way runs too if it is due by the end;
/// - a machine that was busy (`block`) or asleep (`sleep`) is a call of its own.
class SimulatedRunLoop final : public RunLoop {
public:
    std::shared_ptr<Timer> scheduledTimer(double interval, bool repeats, TimerBlock block) override;
    void async(std::function<void()> block) override;
    void asyncAfter(double delay, std::function<void()> block) override;
    [[nodiscard]] bool isMainThread() const override;
    [[nodiscard]] double currentMediaTime() const override;
    [[nodiscard]] double currentDate() const override;

    /// Lets `seconds` (not negative) pass.
    void advance(double seconds);
    /// Runs what is on the main queue, without any time passing.
    void runMainQueue();
    /// Lets `seconds` pass with the main thread busy: nothing runs, then late work is due at once.
    void block(double seconds);
    /// Lets `seconds` pass with the machine asleep: only the wall clock moves.
    void sleep(double seconds);
    /// Moves the wall clock alone, as when a person sets it.
    void setDate(double secondsSince1970);
    /// While held, the main queue keeps what it is given, as when the main thread is between turns.
    void holdMainQueue(bool held);

    /// Number of timers and delayed blocks that still have something to do.
    [[nodiscard]] std::size_t pendingCount() const { return m_queue.pendingCount(); }

    /// Seconds on the media clock at which the next of them is due; none without any.
    [[nodiscard]] std::optional<double> nextDeadline() const;

private:
    const std::thread::id m_mainThread = std::this_thread::get_id();
    TimerQueue m_queue;
    // The media clock. It starts at zero, where tenths of seconds add up as a person would expect.
    TimerQueue::Nanoseconds m_now = 0;
    // Wall clock less media clock.
    TimerQueue::Nanoseconds m_dateOffset = toNanoseconds(1.7e9);
    bool m_queueHeld = false;

    // Any thread.
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_mainQueue;
};

} // namespace quorvane
