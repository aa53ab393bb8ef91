#include "platform/TimerQueue.h"

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {

constexpr double nanosecondsPerSecond = 1e9;

// Seconds. Replaces an interval of 0 or less, which would keep the run loop busy for ever.
constexpr double shortestInterval = 1e-4;

} // namespace

TimerQueue::Nanoseconds toNanoseconds(double seconds) {
    // The sum of two of these still fits.
    constexpr double limit = 4.6e18;
    return std::llround(std::clamp(seconds * nanosecondsPerSecond, -limit, limit));
}

class TimerQueue::Entry final : public Timer {
public:
    Entry(TimerQueue& queue, Nanoseconds start, double interval, bool repeats,
          RunLoop::TimerBlock block)
        : m_queue(&queue), m_block(std::make_shared<RunLoop::TimerBlock>(std::move(block))),
          m_start(start), m_interval(interval > 0 ? interval : shortestInterval),
          m_repeats(repeats), m_key(gridPoint(1), queue.m_nextSerial++) {}

    void invalidate() override {
        if (!m_queue)
            return;
        TimerQueue& queue = *m_queue;
        detach();
        queue.m_entries.erase(m_key);
    }

    [[nodiscard]] bool isValid() const override { return m_queue != nullptr; }

    [[nodiscard]] bool repeats() const { return m_repeats; }

    [[nodiscard]] Key key() const { return m_key; }

    /// Moves to the first grid point after `now`; `now` is not before the current one.
    Key advance(Nanoseconds now) {
        const double elapsed = static_cast<double>(now - m_start) / nanosecondsPerSecond;
        // Less one, because the division may have rounded up.
        const auto passed = static_cast<std::int64_t>(elapsed / m_interval) - 1;
        m_next = std::max(m_next + 1, passed);
        while (gridPoint(m_next) <= now)
            ++m_next;
        m_key.first = gridPoint(m_next);
        return m_key;
    }

    /// Runs the block. A timer that does not repeat becomes invalid before that.
    void fire() {
        // Copied, because the block may invalidate the timer that owns it.
        const auto block = m_block;
        if (!m_repeats)
            detach();
        (*block)(*this);
    }

    /// Makes the timer invalid and releases the block.
    void detach() {
        m_queue = nullptr;
        m_block.reset();
    }

private:
    /// Computed from the start each time, so that errors do not add up.
    [[nodiscard]] Nanoseconds gridPoint(std::int64_t n) const {
        return m_start + toNanoseconds(static_cast<double>(n) * m_interval);
    }

    TimerQueue* m_queue;
    std::shared_ptr<RunLoop::TimerBlock> m_block;
    Nanoseconds m_start;
    double m_interval;
    std::int64_t m_next = 1;
    bool m_repeats;
    Key m_key;
};

TimerQueue::~TimerQueue() {
    // Blocks may own objects whose destruction invalidates other timers of this queue.
    const auto entries = std::exchange(m_entries, {});
    for (const auto& [key, entry] : entries)
        entry->detach();
}

std::shared_ptr<Timer> TimerQueue::schedule(Nanoseconds now, double interval, bool repeats,
                                            RunLoop::TimerBlock block) {
    auto entry = std::make_shared<Entry>(*this, now, interval, repeats, std::move(block));
    m_entries.emplace(entry->key(), entry);
    return entry;
}

std::optional<TimerQueue::Nanoseconds> TimerQueue::nextDeadline() const {
    if (m_entries.empty())
        return std::nullopt;
    return m_entries.begin()->first.first;
}

bool TimerQueue::runNext(Nanoseconds now) {
    if (m_entries.empty() || m_entries.begin()->first.first > now)
        return false;
    auto node = m_entries.extract(m_entries.begin());
    const auto entry = node.mapped();
    if (entry->repeats()) {
        node.key() = entry->advance(now);
        m_entries.insert(std::move(node));
    }
    entry->fire();
    return true;
}

} // namespace quorvane
