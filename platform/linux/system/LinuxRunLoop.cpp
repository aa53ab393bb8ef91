#include "platform/linux/system/LinuxRunLoop.h"

#include <QSocketNotifier>
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <string>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

#include "base/FatalError.h"

namespace quorvane {

namespace {

constexpr TimerQueue::Nanoseconds nanosecondsPerSecond = 1'000'000'000;

TimerQueue::Nanoseconds readClock(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return TimerQueue::Nanoseconds{time.tv_sec} * nanosecondsPerSecond + time.tv_nsec;
}

TimerQueue::Nanoseconds now() {
    return readClock(CLOCK_MONOTONIC);
}

double toSeconds(TimerQueue::Nanoseconds nanoseconds) {
    return static_cast<double>(nanoseconds) / static_cast<double>(nanosecondsPerSecond);
}

int requireDescriptor(int descriptor, const char* what) {
    if (descriptor >= 0)
        return descriptor;
    fatalError("LinuxRunLoop: no " + std::string(what) + ": " + std::strerror(errno));
}

/// Reads the counter of a timerfd or eventfd, so that it is no longer readable.
void drain(int descriptor) {
    std::uint64_t count = 0;
    while (read(descriptor, &count, sizeof count) < 0 && errno == EINTR) {
    }
}

} // namespace

LinuxRunLoop::LinuxRunLoop()
    : m_timerDescriptor(requireDescriptor(
          timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC), "timer descriptor")),
      m_eventDescriptor(
          requireDescriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC), "event descriptor")),
      m_timerNotifier(
          std::make_unique<QSocketNotifier>(m_timerDescriptor.get(), QSocketNotifier::Type::Read)),
      m_eventNotifier(
          std::make_unique<QSocketNotifier>(m_eventDescriptor.get(), QSocketNotifier::Type::Read)) {
    QObject::connect(m_timerNotifier.get(), &QSocketNotifier::activated, [this] { runDueWork(); });
    QObject::connect(m_eventNotifier.get(), &QSocketNotifier::activated,
                     [this] { runMainQueue(); });
}

LinuxRunLoop::~LinuxRunLoop() = default;

std::shared_ptr<Timer> LinuxRunLoop::scheduledTimer(double interval, bool repeats,
                                                    TimerBlock block) {
    auto timer = m_queue.schedule(now(), interval, repeats, std::move(block));
    arm();
    return timer;
}

void LinuxRunLoop::async(std::function<void()> block) {
    bool wasEmpty = false;
    {
        const std::lock_guard lock(m_mutex);
        wasEmpty = m_mainQueue.empty();
        m_mainQueue.push_back(std::move(block));
    }
    if (!wasEmpty)
        return;
    const std::uint64_t one = 1;
    while (write(m_eventDescriptor.get(), &one, sizeof one) < 0 && errno == EINTR) {
    }
}

void LinuxRunLoop::asyncAfter(double delay, std::function<void()> block) {
    scheduledTimer(delay, false, [block = std::move(block)](Timer&) { block(); });
}

bool LinuxRunLoop::isMainThread() const {
    return std::this_thread::get_id() == m_mainThread;
}

double LinuxRunLoop::currentMediaTime() const {
    return toSeconds(now());
}

double LinuxRunLoop::currentDate() const {
    return toSeconds(readClock(CLOCK_REALTIME));
}

void LinuxRunLoop::runDueWork() {
    drain(m_timerDescriptor.get());
    m_armedFor.reset();
    // Only what was due when the timer fired: a timer that is due again at once must not starve the
    // event loop.
    const TimerQueue::Nanoseconds fired = now();
    while (m_queue.runNext(fired)) {
    }
    arm();
}

void LinuxRunLoop::runMainQueue() {
    drain(m_eventDescriptor.get());
    std::deque<std::function<void()>> blocks;
    {
        const std::lock_guard lock(m_mutex);
        blocks.swap(m_mainQueue);
    }
    for (const auto& block : blocks)
        block();
}

void LinuxRunLoop::arm() {
    const auto deadline = m_queue.nextDeadline();
    if (deadline == m_armedFor)
        return;
    m_armedFor = deadline;
    itimerspec when{};
    if (deadline) {
        // A past instant fires at once; zero would disarm.
        const auto instant = std::max<TimerQueue::Nanoseconds>(*deadline, 1);
        when.it_value.tv_sec = instant / nanosecondsPerSecond;
        when.it_value.tv_nsec = instant % nanosecondsPerSecond;
    }
    timerfd_settime(m_timerDescriptor.get(), TFD_TIMER_ABSTIME, &when, nullptr);
}

} // namespace quorvane
