#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <thread>
#include <vector>

#include "platform/linux/system/LinuxRunLoop.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "tests/contract/Contract.h"
#include "tests/support/QtApplication.h"
#include "tests/support/Waiting.h"

namespace quorvane {
namespace {

/// A run loop and how time passes on it.
class RunLoopBackend : public ContractBackend {
public:
    virtual RunLoop& runLoop() = 0;
    /// Lets time pass with the main thread at rest.
    virtual void rest(double seconds) = 0;
    /// Lets time pass with the main thread busy.
    virtual void keepBusy(double seconds) = 0;
};

class SimulatedBackend final : public RunLoopBackend {
public:
    RunLoop& runLoop() override { return m_runLoop; }

    void rest(double seconds) override { m_runLoop.advance(seconds); }

    void keepBusy(double seconds) override { m_runLoop.block(seconds); }

private:
    SimulatedRunLoop m_runLoop;
};

class LinuxBackend final : public RunLoopBackend {
public:
    RunLoop& runLoop() override { return m_runLoop; }

    void rest(double seconds) override {
        // Qt's timers are in whole milliseconds.
        waitFor(std::chrono::milliseconds(std::lround(seconds * 1e3) + 1));
    }

    void keepBusy(double seconds) override {
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    }

private:
    QtApplication m_application;
    LinuxRunLoop m_runLoop;
};

class RunLoopContract : public Contract<RunLoopBackend> {
protected:
    RunLoop& m_runLoop = m_backend->runLoop();
};

TEST_P(RunLoopContract, ARepeatingTimerFiresOnItsGridAndNeverDrifts) {
    constexpr double interval = 0.05;
    const double start = m_runLoop.currentMediaTime();
    std::vector<double> lateness;
    const auto timer = m_runLoop.scheduledTimer(interval, true, [&](Timer&) {
        const double instant = m_runLoop.currentMediaTime() - start;
        EXPECT_GE(instant, static_cast<double>(lateness.size() + 1) * interval - 1e-6)
            << "firing " << lateness.size() + 1 << " is early";
        lateness.push_back(std::fmod(instant + 1e-6, interval));
        // A timer that counts from the end of its block is this much later each time.
        m_backend->keepBusy(0.02);
    });
    while (lateness.size() < 10)
        m_backend->rest(0.05);
    timer->invalidate();
    // Some firings may be late on a busy machine; some of a drifting timer are on the grid by
    // chance.
    const auto onTime = [](double late) { return late < 0.01; };
    EXPECT_GE(std::count_if(lateness.begin(), lateness.end(), onTime), 7);
}

TEST_P(RunLoopContract, FiringsThatABusyThreadMissedAreSkippedAndTheGridIsKept) {
    int firings = 0;
    const double start = m_runLoop.currentMediaTime();
    const auto timer = m_runLoop.scheduledTimer(0.1, true, [&](Timer&) { ++firings; });
    m_backend->keepBusy(0.45);
    EXPECT_EQ(firings, 0);
    m_backend->rest(0.001);
    EXPECT_EQ(firings, 1) << "four grid points passed, one firing makes up for them";
    // The next grid point is 0.5 s after the start, not 0.1 s after the late firing.
    while (firings < 2)
        m_backend->rest(0.005);
    const double next = m_runLoop.currentMediaTime();
    EXPECT_GE(next, start + 0.5 - 1e-6);
    EXPECT_LT(next, start + 0.545);
    timer->invalidate();
}

TEST_P(RunLoopContract, AOneShotTimerFiresOnceAndIsNoLongerValidInItsBlock) {
    int firings = 0;
    bool valid = true;
    const auto timer = m_runLoop.scheduledTimer(0.01, false, [&](Timer& self) {
        ++firings;
        valid = self.isValid();
    });
    EXPECT_TRUE(timer->isValid());
    m_backend->rest(0.06);
    EXPECT_EQ(firings, 1);
    EXPECT_FALSE(valid);
    EXPECT_FALSE(timer->isValid());
}

TEST_P(RunLoopContract, InvalidateWorksFromInsideTheTimersOwnBlock) {
    int firings = 0;
    const auto timer = m_runLoop.scheduledTimer(0.01, true, [&](Timer& self) {
        ++firings;
        self.invalidate();
        self.invalidate();
    });
    m_backend->rest(0.06);
    EXPECT_EQ(firings, 1);
    EXPECT_FALSE(timer->isValid());
}

TEST_P(RunLoopContract, ATimerCanInvalidateAnotherThatIsDueAtTheSameTime) {
    std::shared_ptr<Timer> second;
    int firings = 0;
    m_runLoop.scheduledTimer(0.01, false, [&](Timer&) { second->invalidate(); });
    second = m_runLoop.scheduledTimer(0.01, false, [&](Timer&) { ++firings; });
    m_backend->keepBusy(0.02);
    m_backend->rest(0.03);
    EXPECT_EQ(firings, 0);
}

TEST_P(RunLoopContract, AScheduledTimerFiresWithoutItsHandle) {
    int firings = 0;
    std::shared_ptr<Timer> held = m_runLoop.scheduledTimer(0.01, true, [&](Timer&) { ++firings; });
    held = m_runLoop.scheduledTimer(10, true, [](Timer&) {});
    m_backend->rest(0.1);
    EXPECT_GE(firings, 3);
    held->invalidate();
}

TEST_P(RunLoopContract, ATimerMayScheduleAnotherFromItsBlock) {
    int firings = 0;
    m_runLoop.scheduledTimer(0.01, false, [&](Timer&) {
        m_runLoop.scheduledTimer(0.01, false, [&](Timer&) { ++firings; });
    });
    m_backend->rest(0.08);
    EXPECT_EQ(firings, 1);
}

TEST_P(RunLoopContract, DelayedBlocksRunOnceInTheOrderOfTheirDeadlines) {
    std::vector<int> order;
    m_runLoop.asyncAfter(0.03, [&] { order.push_back(2); });
    m_runLoop.asyncAfter(0.01, [&] { order.push_back(1); });
    m_backend->rest(0.1);
    EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST_P(RunLoopContract, AnEarlierDeadlineDoesNotWaitForALaterOneScheduledFirst) {
    bool ran = false;
    m_runLoop.asyncAfter(10, [] {});
    m_runLoop.asyncAfter(0.01, [&] { ran = true; });
    m_backend->rest(0.1);
    EXPECT_TRUE(ran);
}

TEST_P(RunLoopContract, ABlockThatTakesLongerThanItsIntervalLeavesRoomForOthers) {
    int firings = 0;
    const auto timer = m_runLoop.scheduledTimer(0.001, true, [&](Timer& self) {
        m_backend->keepBusy(0.002);
        if (++firings == 100)
            self.invalidate();
    });
    m_backend->rest(0.02);
    EXPECT_LT(firings, 100);
    timer->invalidate();
}

TEST_P(RunLoopContract, NothingRunsEarly) {
    const double start = m_runLoop.currentMediaTime();
    double ran = 0;
    m_runLoop.asyncAfter(0.05, [&] { ran = m_runLoop.currentMediaTime(); });
    m_backend->rest(0.1);
    EXPECT_GE(ran, start + 0.05 - 1e-9);
}

TEST_P(RunLoopContract, AsyncNeverRunsInsideTheCallAndKeepsItsOrder) {
    std::vector<int> order;
    m_runLoop.async([&] {
        order.push_back(1);
        m_runLoop.async([&] { order.push_back(3); });
    });
    m_runLoop.async([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    m_backend->rest(0.02);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST_P(RunLoopContract, AsyncFromAnotherThreadRunsOnTheMainThread) {
    EXPECT_TRUE(m_runLoop.isMainThread());
    bool thereIsMain = true;
    bool blockIsMain = false;
    std::thread([&] {
        thereIsMain = m_runLoop.isMainThread();
        m_runLoop.async([&] { blockIsMain = m_runLoop.isMainThread(); });
    }).join();
    m_backend->rest(0.02);
    EXPECT_FALSE(thereIsMain);
    EXPECT_TRUE(blockIsMain);
}

TEST_P(RunLoopContract, BlocksFromManyThreadsAllRun) {
    constexpr int perThread = 500;
    int ran = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < perThread; ++n)
                m_runLoop.async([&] { ++ran; });
        });
    }
    for (auto& thread : threads)
        thread.join();
    m_backend->rest(0.05);
    EXPECT_EQ(ran, 4 * perThread);
}

TEST_P(RunLoopContract, BothClocksAdvanceWithTime) {
    const double media = m_runLoop.currentMediaTime();
    const double date = m_runLoop.currentDate();
    m_backend->rest(0.05);
    EXPECT_GE(m_runLoop.currentMediaTime() - media, 0.05);
    EXPECT_NEAR(m_runLoop.currentDate() - date, m_runLoop.currentMediaTime() - media, 0.02);
    EXPECT_GT(date, 1.6e9) << "seconds since 1970";
}

TEST_P(RunLoopContract, AnIntervalThatIsNotAboveZeroDoesNotBlockTheRunLoop) {
    int firings = 0;
    const auto timer = m_runLoop.scheduledTimer(-1, true, [&](Timer&) { ++firings; });
    m_backend->rest(0.02);
    EXPECT_GT(firings, 0);
    EXPECT_LE(firings, 250);
    timer->invalidate();
}

INSTANTIATE_TEST_SUITE_P(Simulated, RunLoopContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(Linux, RunLoopContract, on<LinuxBackend>());

} // namespace
} // namespace quorvane
