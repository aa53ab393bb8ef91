#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "platform/RunLoop.h"

namespace quorvane {

/// Forwards to another run loop, counts and reports some of its calls, and can pretend to be on
/// another thread. It outlives its timers.
class WatchedRunLoop final : public RunLoop {
public:
    explicit WatchedRunLoop(RunLoop& real) : m_real(real) {}

    std::shared_ptr<Timer> scheduledTimer(double interval, bool repeats,
                                          TimerBlock block) override {
        return std::make_shared<WatchedTimer>(
            *this, m_real.scheduledTimer(interval, repeats, std::move(block)));
    }

    void async(std::function<void()> block) override {
        ++asyncCount;
        m_real.async(std::move(block));
    }

    void asyncAfter(double delay, std::function<void()> block) override {
        m_real.asyncAfter(delay, std::move(block));
    }

    [[nodiscard]] bool isMainThread() const override {
        if (truthsBeforeDenial == 0)
            return false;
        truthsBeforeDenial -= truthsBeforeDenial > 0 ? 1 : 0;
        return m_real.isMainThread();
    }

    [[nodiscard]] double currentMediaTime() const override { return m_real.currentMediaTime(); }

    [[nodiscard]] double currentDate() const override { return m_real.currentDate(); }

    /// Called just before a timer is ended through its handle.
    std::function<void()> onInvalidate;
    /// How often `async` was called.
    std::atomic<int> asyncCount = 0;
    /// `isMainThread` forwards so many more times and then returns false; below 0: always forwards.
    mutable int truthsBeforeDenial = -1;

private:
    class WatchedTimer final : public Timer {
    public:
        WatchedTimer(WatchedRunLoop& runLoop, std::shared_ptr<Timer> real)
            : m_runLoop(runLoop), m_real(std::move(real)) {}

        void invalidate() override {
            if (m_runLoop.onInvalidate)
                m_runLoop.onInvalidate();
            m_real->invalidate();
        }

        [[nodiscard]] bool isValid() const override { return m_real->isValid(); }

    private:
        WatchedRunLoop& m_runLoop;
        std::shared_ptr<Timer> m_real;
    };

    RunLoop& m_real;
};

} // namespace quorvane
