#pragma once

#include "platform/RunLoop.h"

namespace quorvane {

/// The main run loop's timers in its default mode, and the main dispatch queue. Both run in Qt's
/// event loop, which is the same run loop.
class MacRunLoop final : public RunLoop {
public:
    std::shared_ptr<Timer> scheduledTimer(double interval, bool repeats, TimerBlock block) override;
    void async(std::function<void()> block) override;
    void asyncAfter(double delay, std::function<void()> block) override;
    [[nodiscard]] bool isMainThread() const override;
    [[nodiscard]] double currentMediaTime() const override;
    [[nodiscard]] double currentDate() const override;
};

} // namespace quorvane
