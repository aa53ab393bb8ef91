#include "platform/macos/MacRunLoop.h"

#import <Foundation/Foundation.h>
#import <QuartzCore/QuartzCore.h>

#include <utility>

namespace quorvane {

namespace {

class MacTimer final : public Timer {
public:
    MacTimer(RunLoop::TimerBlock block, bool repeats)
        : m_block(std::move(block)), m_repeats(repeats) {}

    void setTimer(NSTimer* timer) { m_timer = timer; }

    void invalidate() override { [m_timer invalidate]; }

    [[nodiscard]] bool isValid() const override { return m_timer.valid; }

    void fire() {
        // NSTimer invalidates itself after the block; ours has to be invalid while it runs.
        if (!m_repeats)
            invalidate();
        m_block(*this);
    }

private:
    RunLoop::TimerBlock m_block;
    bool m_repeats;
    // The run loop holds it until it is invalidated, and its block holds this object.
    __weak NSTimer* m_timer = nil;
};

} // namespace

std::shared_ptr<Timer> MacRunLoop::scheduledTimer(double interval, bool repeats, TimerBlock block) {
    const auto timer = std::make_shared<MacTimer>(std::move(block), repeats);
    timer->setTimer([NSTimer scheduledTimerWithTimeInterval:interval
                                                    repeats:repeats
                                                      block:^(NSTimer*) {
                                                        // A timer that invalidates itself releases
                                                        // this block.
                                                        const auto kept = timer;
                                                        kept->fire();
                                                      }]);
    return timer;
}

void MacRunLoop::async(std::function<void()> block) {
    dispatch_async(dispatch_get_main_queue(), ^{
      block();
    });
}

void MacRunLoop::asyncAfter(double delay, std::function<void()> block) {
    const auto nanoseconds = static_cast<std::int64_t>(delay * NSEC_PER_SEC);
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, nanoseconds), dispatch_get_main_queue(), ^{
      block();
    });
}

bool MacRunLoop::isMainThread() const {
    return NSThread.isMainThread;
}

double MacRunLoop::currentMediaTime() const {
    return CACurrentMediaTime();
}

double MacRunLoop::currentDate() const {
    return [NSDate date].timeIntervalSince1970;
}

} // namespace quorvane
