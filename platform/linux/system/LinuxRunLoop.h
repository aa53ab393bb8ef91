#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/TimerQueue.h"
#include "platform/linux/common/FileDescriptor.h"

class QSocketNotifier;

namespace quorvane {

/// The run loop inside the Qt event loop: one timerfd armed for the earliest deadline, one eventfd
/// that other threads write to for the main queue. No wake-ups while idle. Needs a QCoreApplication
/// on the constructing thread, which is the main thread from then on.
class LinuxRunLoop final : public RunLoop {
public:
    /// Aborts with a message if the kernel gives no descriptors.
    LinuxRunLoop();
    ~LinuxRunLoop() override;

    std::shared_ptr<Timer> scheduledTimer(double interval, bool repeats, TimerBlock block) override;
    void async(std::function<void()> block) override;
    void asyncAfter(double delay, std::function<void()> block) override;
    [[nodiscard]] bool isMainThread() const override;
    /// CLOCK_MONOTONIC.
    [[nodiscard]] double currentMediaTime() const override;
    /// CLOCK_REALTIME.
    [[nodiscard]] double currentDate() const override;

private:
    void runDueWork();
    void runMainQueue();
    void arm();

    const std::thread::id m_mainThread = std::this_thread::get_id();
    const FileDescriptor m_timerDescriptor;
    const FileDescriptor m_eventDescriptor;
    std::unique_ptr<QSocketNotifier> m_timerNotifier;
    std::unique_ptr<QSocketNotifier> m_eventNotifier;
    TimerQueue m_queue;
    // What the timerfd is armed for, to skip the system call when it is unchanged; none: disarmed.
    std::optional<TimerQueue::Nanoseconds> m_armedFor;

    // Any thread.
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_mainQueue;
};

} // namespace quorvane
