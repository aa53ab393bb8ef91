#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "platform/RunLoop.h"

namespace quorvane {

/// The order of work in time that every run loop of ours shares: which timers and delayed blocks
/// there are, which is next, and on which grid a repeating one goes on. It knows no clock; the
/// run loop tells it what time it is, in nanoseconds since whatever start. Main thread only.
class TimerQueue {
public:
    using Nanoseconds = std::int64_t;

    ~TimerQueue();

    /// See RunLoop::scheduledTimer; `now` is the start of the grid.
    std::shared_ptr<Timer> schedule(Nanoseconds now, double interval, bool repeats,
                                    RunLoop::TimerBlock block);

    /// The instant at which the earliest piece of work is due; none without work.
    [[nodiscard]] std::optional<Nanoseconds> nextDeadline() const;

    /// Number of timers and delayed blocks that still have something to do.
    [[nodiscard]] std::size_t pendingCount() const { return m_entries.size(); }

    /// Runs the earliest piece of work if it is due at `now`; false if there is none. A repeating
    /// timer moves on to its first grid point after `now` before its block runs. Allocates nothing.
    bool runNext(Nanoseconds now);

private:
    class Entry;
    // The deadline, then the order in which work was scheduled.
    using Key = std::pair<Nanoseconds, std::uint64_t>;

    std::map<Key, std::shared_ptr<Entry>> m_entries;
    std::uint64_t m_nextSerial = 0;
};

/// `seconds` as the nearest whole number of nanoseconds, within some 146 years either way.
[[nodiscard]] TimerQueue::Nanoseconds toNanoseconds(double seconds);

} // namespace quorvane
