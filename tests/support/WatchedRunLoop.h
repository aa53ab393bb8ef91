#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "platform/RunLoop.h"

namespace quorvane {

/// A run loop that forwards to another one, for tests to observe calls and to fake `isMainThread`.
/// Outlives its timers.
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
        if (correctAnswers == 0)
            return false;
        correctAnswers -= correctAnswers > 0 ? 1 : 0;
        return m_real.isMainThread();
    }

    [[nodiscard]] double currentMediaTime() const override { return m_real.currentMediaTime(); }

    [[nodiscard]] double currentDate() const override { return m_real.currentDate(); }

    /// Called before a timer is invalidated.
    std::function<void()> onInvalidate;
    /// Number of calls of `async`.
    std::atomic<int> asyncCount = 0;
    /// After this many correct answers, `isMainThread` returns false; below 0: never.
    mutable int correctAnswers = -1;

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
