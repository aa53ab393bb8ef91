#include "platform/TimerQueue.h"
#include "base/NonCopyable.h"

#include <gtest/gtest.h>
#include <memory>
#include <utility>
#include <vector>

#include "platform/simulated/SimulatedRunLoop.h"

namespace quorvane {
namespace {

TEST(TimerQueue, ATimerOfASixtiethOfASecondDoesNotDriftInADay) {
    TimerQueue queue;
    std::int64_t firings = 0;
    queue.schedule(0, 1.0 / 60, true, [&](Timer&) { ++firings; });
    constexpr std::int64_t perDay = std::int64_t{60} * 86400;
    while (firings < perDay)
        queue.runNext(*queue.nextDeadline());
    // One firing later: exactly a day and a sixtieth, to the nanosecond.
    EXPECT_EQ(*queue.nextDeadline(), TimerQueue::Nanoseconds{86400} * 1'000'000'000 + 16'666'667);
}

TEST(TimerQueue, ATimerOfASixtiethOfASecondIsStillOnItsGridAfter400Days) {
    TimerQueue queue;
    queue.schedule(0, 1.0 / 60, true, [](Timer&) {});
    constexpr TimerQueue::Nanoseconds later = TimerQueue::Nanoseconds{400} * 86400 * 1'000'000'000;
    queue.runNext(later);
    for (TimerQueue::Nanoseconds sixtieth = 1; sixtieth <= 600; ++sixtieth) {
        const TimerQueue::Nanoseconds due = *queue.nextDeadline();
        ASSERT_NEAR(static_cast<double>(due - later), static_cast<double>(sixtieth) * 1e9 / 60, 10);
        queue.runNext(due);
    }
}

TEST(TimerQueue, NothingRunsBeforeItIsDue) {
    TimerQueue queue;
    queue.schedule(0, 1, false, [](Timer&) { FAIL(); });
    EXPECT_FALSE(queue.runNext(999'999'999));
    EXPECT_EQ(queue.pendingCount(), 1U);
}

TEST(TimerQueue, AnInvalidatedTimerIsRemovedAtOnceAndItsBlockDestroyed) {
    TimerQueue queue;
    auto captured = std::make_shared<int>();
    const auto timer = queue.schedule(0, 1, true, [captured](Timer&) {});
    timer->invalidate();
    EXPECT_EQ(captured.use_count(), 1);
    EXPECT_EQ(queue.pendingCount(), 0U);
    EXPECT_FALSE(queue.nextDeadline());
}

TEST(TimerQueue, ATimerIsDueAtItsDeadlineAndNotANanosecondBefore) {
    TimerQueue queue;
    int ran = 0;
    queue.schedule(0, 1, false, [&](Timer&) { ++ran; });
    EXPECT_FALSE(queue.runNext(999'999'999));
    EXPECT_TRUE(queue.runNext(1'000'000'000));
    EXPECT_EQ(ran, 1);
    EXPECT_FALSE(queue.runNext(1'000'000'000));
}

TEST(TimerQueue, ATimerThatDoesNotRepeatIsInvalidBeforeItsBlockRuns) {
    TimerQueue queue;
    bool valid = true;
    const auto timer = queue.schedule(0, 1, false, [&](Timer& self) {
        valid = self.isValid();
        self.invalidate();
    });
    EXPECT_TRUE(timer->isValid());
    queue.runNext(1'000'000'000);
    EXPECT_FALSE(valid);
    EXPECT_EQ(queue.pendingCount(), 0U);
}

TEST(TimerQueue, ARepeatingTimerMayEndItselfInItsBlock) {
    TimerQueue queue;
    int ran = 0;
    auto captured = std::make_shared<int>();
    const auto timer = queue.schedule(0, 1, true, [&, captured](Timer& self) {
        ++ran;
        self.invalidate();
        EXPECT_EQ(captured.use_count(), 2) << "the block lives until it returns";
    });
    EXPECT_TRUE(queue.runNext(1'000'000'000));
    EXPECT_FALSE(queue.runNext(9'000'000'000));
    EXPECT_EQ(ran, 1);
    EXPECT_FALSE(timer->isValid());
    EXPECT_EQ(captured.use_count(), 1);
}

TEST(TimerQueue, ARepeatingTimerStaysValidAndSkipsMissedFirings) {
    TimerQueue queue;
    const auto timer = queue.schedule(5, 1, true, [](Timer&) {});
    EXPECT_EQ(queue.nextDeadline(), 1'000'000'005);
    queue.runNext(1'000'000'005);
    EXPECT_TRUE(timer->isValid());
    EXPECT_EQ(queue.nextDeadline(), 2'000'000'005);
    queue.runNext(4'000'000'004);
    EXPECT_EQ(queue.nextDeadline(), 4'000'000'005);
    // Exactly at a grid point: that one counts as fired.
    queue.runNext(7'000'000'005);
    EXPECT_EQ(queue.nextDeadline(), 8'000'000'005);
}

TEST(TimerQueue, AnIntervalOfZeroOrLessCountsAsATenthOfAMillisecond) {
    TimerQueue queue;
    queue.schedule(0, 0, true, [](Timer&) {});
    EXPECT_EQ(queue.nextDeadline(), 100'000);
    TimerQueue other;
    other.schedule(0, -5, false, [](Timer&) {});
    EXPECT_EQ(other.nextDeadline(), 100'000);
}

TEST(TimerQueue, AHandleMayOutliveTheQueue) {
    auto queue = std::make_unique<TimerQueue>();
    const auto timer = queue->schedule(0, 1, true, [](Timer&) {});
    queue.reset();
    EXPECT_FALSE(timer->isValid());
    timer->invalidate();
}

TEST(TimerQueue, ABlocksObjectsMayInvalidateOtherTimersDuringTheQueuesDestruction) {
    class Invalidator : NonCopyable {
    public:
        explicit Invalidator(std::shared_ptr<Timer> timer) : m_timer(std::move(timer)) {}

        ~Invalidator() { m_timer->invalidate(); }

    private:
        std::shared_ptr<Timer> m_timer;
    };

    auto queue = std::make_unique<TimerQueue>();
    auto victim = queue->schedule(0, 2, true, [](Timer&) {});
    auto owner = std::make_shared<Invalidator>(victim);
    queue->schedule(0, 1, true, [owner = std::move(owner)](Timer&) {});
    queue.reset();
    EXPECT_FALSE(victim->isValid());
}

TEST(TimerQueue, FarDeadlinesStayWithinTheRangeOfTheClock) {
    EXPECT_EQ(toNanoseconds(1e300), 4'600'000'000'000'000'000);
    EXPECT_EQ(toNanoseconds(-1e300), -4'600'000'000'000'000'000);
    EXPECT_EQ(toNanoseconds(0.05), 50'000'000);
}

TEST(SimulatedRunLoop, TheClockNeverMovesByItself) {
    SimulatedRunLoop runLoop;
    const double before = runLoop.currentMediaTime();
    runLoop.async([] {});
    runLoop.runMainQueue();
    EXPECT_EQ(runLoop.currentMediaTime(), before);
}

TEST(SimulatedRunLoop, TimersFireInOrderEachAtItsDeadline) {
    SimulatedRunLoop runLoop;
    const double start = runLoop.currentMediaTime();
    std::vector<double> instants;
    const auto note = [&] { instants.push_back(runLoop.currentMediaTime() - start); };
    runLoop.asyncAfter(0.3, note);
    runLoop.asyncAfter(0.1, note);
    runLoop.advance(1);
    ASSERT_EQ(instants.size(), 2U);
    EXPECT_DOUBLE_EQ(instants[0], 0.1);
    EXPECT_DOUBLE_EQ(instants[1], 0.3);
    EXPECT_DOUBLE_EQ(runLoop.currentMediaTime() - start, 1);
}

TEST(SimulatedRunLoop, EqualDeadlinesFireInTheOrderOfScheduling) {
    SimulatedRunLoop runLoop;
    std::vector<int> order;
    runLoop.asyncAfter(0.1, [&] { order.push_back(1); });
    runLoop.scheduledTimer(0.1, false, [&](Timer&) { order.push_back(2); });
    runLoop.asyncAfter(0.1, [&] { order.push_back(3); });
    runLoop.advance(0.1);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(SimulatedRunLoop, ATimerScheduledMeanwhileFiresIfItIsDueByTheEnd) {
    SimulatedRunLoop runLoop;
    int ran = 0;
    runLoop.asyncAfter(0.1, [&] {
        runLoop.asyncAfter(0.1, [&] { ++ran; });
        runLoop.asyncAfter(0.2, [&] { ++ran; });
    });
    runLoop.advance(0.25);
    EXPECT_EQ(ran, 1);
}

TEST(SimulatedRunLoop, AnIntervalOfZeroDoesNotBlockIt) {
    SimulatedRunLoop runLoop;
    int ran = 0;
    runLoop.scheduledTimer(0, true, [&](Timer&) { ++ran; });
    runLoop.advance(0.01);
    EXPECT_EQ(ran, 100);
}

TEST(SimulatedRunLoop, FiringsMissedWhileBusyHappenOnceAndLate) {
    SimulatedRunLoop runLoop;
    std::vector<double> instants;
    const double start = runLoop.currentMediaTime();
    runLoop.scheduledTimer(0.1, true,
                           [&](Timer&) { instants.push_back(runLoop.currentMediaTime() - start); });
    runLoop.block(0.35);
    runLoop.advance(0.05);
    ASSERT_EQ(instants.size(), 2U);
    EXPECT_DOUBLE_EQ(instants[0], 0.35);
    EXPECT_DOUBLE_EQ(instants[1], 0.4);
}

TEST(SimulatedRunLoop, ABlockThatTakesLongerThanTheAdvanceDoesNotTurnTheClockBack) {
    SimulatedRunLoop runLoop;
    const double start = runLoop.currentMediaTime();
    runLoop.asyncAfter(1, [&] { runLoop.block(30); });
    runLoop.advance(2);
    EXPECT_DOUBLE_EQ(runLoop.currentMediaTime() - start, 31);
    runLoop.advance(2);
    EXPECT_DOUBLE_EQ(runLoop.currentMediaTime() - start, 33);
}

TEST(SimulatedRunLoop, SleepMovesOnlyTheWallClock) {
    SimulatedRunLoop runLoop;
    const double media = runLoop.currentMediaTime();
    const double date = runLoop.currentDate();
    int ran = 0;
    runLoop.asyncAfter(1, [&] { ++ran; });
    runLoop.sleep(3600);
    runLoop.advance(0);
    EXPECT_EQ(ran, 0);
    EXPECT_DOUBLE_EQ(runLoop.currentMediaTime(), media);
    EXPECT_DOUBLE_EQ(runLoop.currentDate(), date + 3600);
}

TEST(SimulatedRunLoop, CountsItsTimersAndHasTheNextDeadline) {
    SimulatedRunLoop runLoop;
    EXPECT_FALSE(runLoop.nextDeadline());
    runLoop.asyncAfter(2, [] {});
    const auto timer = runLoop.scheduledTimer(1, true, [](Timer&) {});
    EXPECT_EQ(runLoop.pendingCount(), 2U);
    EXPECT_DOUBLE_EQ(*runLoop.nextDeadline(), runLoop.currentMediaTime() + 1);
    timer->invalidate();
    EXPECT_DOUBLE_EQ(*runLoop.nextDeadline(), runLoop.currentMediaTime() + 2);
}

TEST(SimulatedRunLoop, AHeldMainQueueRunsOnceItIsReleased) {
    SimulatedRunLoop runLoop;
    int ran = 0;
    runLoop.holdMainQueue(true);
    runLoop.async([&] { ++ran; });
    runLoop.advance(1);
    EXPECT_EQ(ran, 0);
    runLoop.holdMainQueue(false);
    runLoop.runMainQueue();
    EXPECT_EQ(ran, 1);
}

} // namespace
} // namespace quorvane
