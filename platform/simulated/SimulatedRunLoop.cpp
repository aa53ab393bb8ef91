#include "platform/simulated/SimulatedRunLoop.h"

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {

double toSeconds(TimerQueue::Nanoseconds nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e9;
}

} // namespace

std::shared_ptr<Timer> SimulatedRunLoop::scheduledTimer(double interval, bool repeats,
                                                        TimerBlock block) {
    return m_queue.schedule(m_now, interval, repeats, std::move(block));
}

void SimulatedRunLoop::async(std::function<void()> block) {
    const std::lock_guard lock(m_mutex);
    m_mainQueue.push_back(std::move(block));
}

void SimulatedRunLoop::asyncAfter(double delay, std::function<void()> block) {
    m_queue.schedule(m_now, delay, false, [block = std::move(block)](Timer&) { block(); });
}

bool SimulatedRunLoop::isMainThread() const {
    return std::this_thread::get_id() == m_mainThread;
}

double SimulatedRunLoop::currentMediaTime() const {
    return toSeconds(m_now);
}

double SimulatedRunLoop::currentDate() const {
    return toSeconds(m_now + m_dateOffset);
}

void SimulatedRunLoop::advance(double seconds) {
    const TimerQueue::Nanoseconds end = m_now + toNanoseconds(seconds);
    runMainQueue();
    for (auto due = m_queue.nextDeadline(); due && *due <= end; due = m_queue.nextDeadline()) {
        // After `block`, deadlines can be in the past; the clock does not go back.
        m_now = std::max(m_now, *due);
        m_queue.runNext(m_now);
        runMainQueue();
    }
    // After a block that took longer, the end is in the past.
    m_now = std::max(m_now, end);
}

void SimulatedRunLoop::runMainQueue() {
    while (!m_queueHeld) {
        std::function<void()> block;
        {
            const std::lock_guard lock(m_mutex);
            if (m_mainQueue.empty())
                return;
            block = std::move(m_mainQueue.front());
            m_mainQueue.pop_front();
        }
        block();
    }
}

void SimulatedRunLoop::block(double seconds) {
    m_now += toNanoseconds(seconds);
}

void SimulatedRunLoop::sleep(double seconds) {
    m_dateOffset += toNanoseconds(seconds);
}

void SimulatedRunLoop::setDate(double secondsSince1970) {
    m_dateOffset = toNanoseconds(secondsSince1970) - m_now;
}

void SimulatedRunLoop::holdMainQueue(bool held) {
    m_queueHeld = held;
}

std::optional<double> SimulatedRunLoop::nextDeadline() const {
    const auto due = m_queue.nextDeadline();
    return due ? std::optional(toSeconds(*due)) : std::nullopt;
}

} // namespace quorvane
