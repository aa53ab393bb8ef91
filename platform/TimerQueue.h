#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "platform/RunLoop.h"

namespace quorvane {

/// The timers and delayed blocks of a run loop, in the order of their deadlines. It has no clock:
/// the run loop passes the time, in nanoseconds since an arbitrary start. Main thread only.
class TimerQueue {
public:
    using Nanoseconds = std::int64_t;

    ~TimerQueue();

    /// See RunLoop::scheduledTimer; the timer starts at `now`.
    std::shared_ptr<Timer> schedule(Nanoseconds now, double interval, bool repeats,
                                    RunLoop::TimerBlock block);

    /// The earliest deadline; none if nothing is scheduled.
    [[nodiscard]] std::optional<Nanoseconds> nextDeadline() const;

    /// Number of timers and delayed blocks that will still fire.
    [[nodiscard]] std::size_t pendingCount() const { return m_entries.size(); }

    /// Fires the timer with the earliest deadline if it is due at `now`; else returns false. A
    /// repeating timer gets its next deadline, after `now`, before its block runs. Does not
    /// allocate.
    bool runNext(Nanoseconds now);

private:
    class Entry;
    // The deadline, then the order of scheduling.
    using Key = std::pair<Nanoseconds, std::uint64_t>;

    std::map<Key, std::shared_ptr<Entry>> m_entries;
    std::uint64_t m_nextSerial = 0;
};

/// `seconds` to the nearest nanosecond, clamped to some 146 years either way.
[[nodiscard]] TimerQueue::Nanoseconds toNanoseconds(double seconds);

} // namespace quorvane
