#include "platform/TimerQueue.h"
#include "base/NonCopyable.h"

#include <gtest/gtest.h>
#include <memory>
#include <utility>
#include <vector>

#include "platform/simulated/SimulatedRunLoop.h"

namespace quorvane {
namespace {

TEST(TimerQueue, a_sixtieth_of_a_second_keeps_to_its_grid_for_a_day) {
    TimerQueue queue;
    std::int64_t firings = 0;
    queue.schedule(0, 1.0 / 60, true, [&](Timer&) { ++firings; });
    constexpr std::int64_t perDay = std::int64_t{60} * 86400;
    while (firings < perDay)
        queue.runNext(*queue.nextDeadline());
    // One firing later: exactly a day and a sixtieth, to the nanosecond.
    EXPECT_EQ(*queue.nextDeadline(), TimerQueue::Nanoseconds{86400} * 1'000'000'000 + 16'666'667);
}

TEST(TimerQueue, nothing_runs_before_it_is_due) {
    TimerQueue queue;
    queue.schedule(0, 1, false, [](Timer&) { FAIL(); });
    EXPECT_FALSE(queue.runNext(999'999'999));
    EXPECT_EQ(queue.pendingCount(), 1U);
}

TEST(TimerQueue, an_invalidated_timer_leaves_at_once_and_lets_go_of_what_it_captured) {
    TimerQueue queue;
    auto captured = std::make_shared<int>();
    const auto timer = queue.schedule(0, 1, true, [captured](Timer&) {});
    timer->invalidate();
    EXPECT_EQ(captured.use_count(), 1);
    EXPECT_EQ(queue.pendingCount(), 0U);
    EXPECT_FALSE(queue.nextDeadline());
}

TEST(TimerQueue, work_is_due_at_its_instant_and_not_a_nanosecond_before) {
    TimerQueue queue;
    int ran = 0;
    queue.schedule(0, 1, false, [&](Timer&) { ++ran; });
    EXPECT_FALSE(queue.runNext(999'999'999));
    EXPECT_TRUE(queue.runNext(1'000'000'000));
    EXPECT_EQ(ran, 1);
    EXPECT_FALSE(queue.runNext(1'000'000'000));
}

TEST(TimerQueue, a_timer_that_does_not_repeat_has_ended_before_its_block_runs) {
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

TEST(TimerQueue, a_repeating_timer_may_end_itself_in_its_block) {
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

TEST(TimerQueue, a_repeating_timer_stays_valid_and_skips_what_was_missed) {
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

TEST(TimerQueue, a_negative_or_no_interval_counts_as_a_tenth_of_a_millisecond) {
    TimerQueue queue;
    queue.schedule(0, 0, true, [](Timer&) {});
    EXPECT_EQ(queue.nextDeadline(), 100'000);
    TimerQueue other;
    other.schedule(0, -5, false, [](Timer&) {});
    EXPECT_EQ(other.nextDeadline(), 100'000);
}

TEST(TimerQueue, a_handle_may_outlive_the_queue) {
    auto queue = std::make_unique<TimerQueue>();
    const auto timer = queue->schedule(0, 1, true, [](Timer&) {});
    queue.reset();
    EXPECT_FALSE(timer->isValid());
    timer->invalidate();
}

TEST(TimerQueue, what_a_block_owns_may_invalidate_other_timers_while_the_queue_goes) {
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

TEST(TimerQueue, far_deadlines_stay_within_the_range_of_the_clock) {
    EXPECT_EQ(toNanoseconds(1e300), 4'600'000'000'000'000'000);
    EXPECT_EQ(toNanoseconds(-1e300), -4'600'000'000'000'000'000);
    EXPECT_EQ(toNanoseconds(0.05), 50'000'000);
}

TEST(SimulatedRunLoop, the_clock_never_moves_by_itself) {
    SimulatedRunLoop runLoop;
    const double before = runLoop.currentMediaTime();
    runLoop.async([] {});
    runLoop.runMainQueue();
    EXPECT_EQ(runLoop.currentMediaTime(), before);
}

TEST(SimulatedRunLoop, work_runs_in_time_order_each_at_its_own_instant) {
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

TEST(SimulatedRunLoop, equal_deadlines_run_in_the_order_of_registration) {
    SimulatedRunLoop runLoop;
    std::vector<int> order;
    runLoop.asyncAfter(0.1, [&] { order.push_back(1); });
    runLoop.scheduledTimer(0.1, false, [&](Timer&) { order.push_back(2); });
    runLoop.asyncAfter(0.1, [&] { order.push_back(3); });
    runLoop.advance(0.1);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(SimulatedRunLoop, work_that_is_scheduled_on_the_way_runs_if_it_is_due_by_the_end) {
    SimulatedRunLoop runLoop;
    int ran = 0;
    runLoop.asyncAfter(0.1, [&] {
        runLoop.asyncAfter(0.1, [&] { ++ran; });
        runLoop.asyncAfter(0.2, [&] { ++ran; });
    });
    runLoop.advance(0.25);
    EXPECT_EQ(ran, 1);
}

TEST(SimulatedRunLoop, an_interval_of_zero_cannot_trap_it) {
    SimulatedRunLoop runLoop;
    int ran = 0;
    runLoop.scheduledTimer(0, true, [&](Timer&) { ++ran; });
    runLoop.advance(0.01);
    EXPECT_EQ(ran, 100);
}

TEST(SimulatedRunLoop, work_that_a_busy_main_thread_missed_runs_once_and_late) {
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

TEST(SimulatedRunLoop, sleep_moves_the_wall_clock_alone) {
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

TEST(SimulatedRunLoop, tells_how_much_is_pending_and_when_the_next_is_due) {
    SimulatedRunLoop runLoop;
    EXPECT_FALSE(runLoop.nextDeadline());
    runLoop.asyncAfter(2, [] {});
    const auto timer = runLoop.scheduledTimer(1, true, [](Timer&) {});
    EXPECT_EQ(runLoop.pendingCount(), 2U);
    EXPECT_DOUBLE_EQ(*runLoop.nextDeadline(), runLoop.currentMediaTime() + 1);
    timer->invalidate();
    EXPECT_DOUBLE_EQ(*runLoop.nextDeadline(), runLoop.currentMediaTime() + 2);
}

TEST(SimulatedRunLoop, a_held_main_queue_runs_when_it_is_let_go) {
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
