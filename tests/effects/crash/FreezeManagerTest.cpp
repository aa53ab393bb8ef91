#include "effects/crash/FreezeManager.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <utility>
#include <vector>

#include "effects/crash/FreezeView.h"
#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

using testing::ElementsAre;

// Draws are from 0 to 2^53.
constexpr std::uint64_t lowest = 0;
constexpr std::uint64_t highest = 9007199254740992;
constexpr std::uint64_t middle = 4503599627370496;

class FreezeManagerTest : public testing::Test {
protected:
    [[nodiscard]] std::size_t shown() const { return machine.screens.shownPanels().size(); }

    [[nodiscard]] std::size_t freezes() const { return machine.screens.panels().size(); }

    SimulatedMachine machine;
    std::shared_ptr<FreezeManager> manager = FreezeManager::create(machine.platform());
};

TEST_F(FreezeManagerTest, WaitsFreezesAndWaitsAgainFromTheEndOfTheFreeze) {
    machine.random.script({middle, middle, lowest});
    manager->start();
    machine.runLoop.advance(29.999);
    EXPECT_EQ(shown(), 0U);
    machine.runLoop.advance(0.001);
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(3.499);
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(0.001);
    EXPECT_EQ(shown(), 0U);
    machine.runLoop.advance(19.999);
    EXPECT_EQ(freezes(), 1U);
    machine.runLoop.advance(0.001);
    EXPECT_EQ(freezes(), 2U);
}

TEST_F(FreezeManagerTest, BothEndsOfBothRangesCanBeReached) {
    machine.random.script({lowest, lowest, highest, highest});
    manager->start();
    machine.runLoop.advance(20);
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(3);
    EXPECT_EQ(shown(), 0U);
    machine.runLoop.advance(39.999);
    EXPECT_EQ(shown(), 0U);
    machine.runLoop.advance(0.001);
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(3.999);
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(0.001);
    EXPECT_EQ(shown(), 0U);
}

TEST_F(FreezeManagerTest, ThePanelIsSetUpStepByStep) {
    machine.random.script({lowest});
    manager->start();
    machine.runLoop.advance(20);
    EXPECT_THAT(machine.screens.panels().at(0)->calls,
                ElementsAre("create 0,0 1440x900 style 128 backing 2 defer no", "level 1000",
                            "opaque no", "background 0,0,0,0", "behavior 257", "ignores mouse no",
                            "content view", "frame 0,0 1440x900 display yes", "front"));
}

TEST_F(FreezeManagerTest, ThePanelShowsTheFreezeView) {
    manager->start();
    machine.runLoop.advance(40);
    const auto& view = machine.screens.panels().at(0)->view;
    EXPECT_NE(dynamic_cast<const FreezeView*>(view.get()), nullptr);
}

TEST_F(FreezeManagerTest, EachFreezeDrawsItsLengthAndThenTheWaitAfterIt) {
    machine.random.script({highest, highest});
    manager->start();
    EXPECT_EQ(machine.random.bounds().size(), 1U);
    machine.runLoop.advance(40);
    EXPECT_EQ(machine.random.bounds().size(), 2U);
    machine.runLoop.advance(4);
    EXPECT_THAT(machine.random.bounds(),
                ElementsAre(9007199254740992, 9007199254740992, 9007199254740992));
}

TEST_F(FreezeManagerTest, AFreezeCoversTheScreenThatIsTheMainOneByThen) {
    manager->start();
    machine.screens.setMainScreen(Rect{.x = 100, .y = 50, .width = 800, .height = 600});
    machine.runLoop.advance(40);
    EXPECT_EQ(machine.screens.panels().at(0)->calls.front(),
              "create 100,50 800x600 style 128 backing 2 defer no");
    EXPECT_EQ(machine.screens.panels().at(0)->calls.at(7), "frame 100,50 800x600 display yes");
}

TEST_F(FreezeManagerTest, ItIsActiveBeforeItWaitsAndInactiveBeforeThePanelGoes) {
    std::vector<std::size_t> pending;
    std::vector<std::size_t> panels;
    const auto active = manager->isActive().observe([&] {
        pending.push_back(machine.runLoop.pendingCount());
        panels.push_back(shown());
    });
    machine.random.script({lowest});
    manager->start();
    machine.runLoop.advance(20);
    manager->stop();
    EXPECT_THAT(pending, ElementsAre(0U, 1U));
    EXPECT_THAT(panels, ElementsAre(0U, 1U));
}

TEST_F(FreezeManagerTest, ThePanelIsOrderedOutOnce) {
    machine.random.script({lowest, lowest});
    manager->start();
    machine.runLoop.advance(23);
    manager->stop();
    const auto& calls = machine.screens.panels().at(0)->calls;
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "out"), 1);
}

TEST_F(FreezeManagerTest, MayBeReleasedOnAnotherThread) {
    manager->start();
    std::thread([last = std::move(manager)]() mutable { last.reset(); }).join();
    machine.runLoop.runMainQueue();
    machine.runLoop.advance(100);
    EXPECT_EQ(freezes(), 0U);
}

TEST_F(FreezeManagerTest, AStartWhileActiveSchedulesNothing) {
    manager->start();
    manager->start();
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
}

TEST_F(FreezeManagerTest, StopDuringAFreezeClearsItAndItsEndDoesNothing) {
    machine.random.script({lowest, highest});
    manager->start();
    machine.runLoop.advance(21);
    manager->stop();
    EXPECT_EQ(shown(), 0U);
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "the end of the freeze cannot be cancelled";
    machine.runLoop.advance(3);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U) << "its end schedules no further freeze";
    machine.runLoop.advance(100);
    EXPECT_EQ(freezes(), 1U);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(FreezeManagerTest, StopWhileWaitingEndsTheWait) {
    manager->start();
    manager->stop();
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(FreezeManagerTest, StopWhenIdleIsHarmless) {
    manager->stop();
    EXPECT_FALSE(manager->isActive());
}

TEST_F(FreezeManagerTest, StopAndStartWithinAFreezeMakeTwoChainsSideBySide) {
    // First wait 20 s, freeze 4 s; the restart waits 40 s; the old end begins a wait of 30 s.
    machine.random.script({lowest, highest, highest, middle});
    manager->start();
    machine.runLoop.advance(21);
    manager->stop();
    manager->start();
    EXPECT_EQ(shown(), 0U);
    machine.runLoop.advance(3);
    EXPECT_EQ(machine.runLoop.pendingCount(), 2U) << "two waiting chains";
    machine.runLoop.advance(30);
    EXPECT_EQ(freezes(), 2U) << "the chain of the old freeze, at 54 s";
    machine.runLoop.advance(7);
    EXPECT_EQ(freezes(), 3U) << "the chain of the restart, at 61 s";
}

TEST_F(FreezeManagerTest, StopEndsOnlyTheNewerOfTwoChainsAndTheOtherFiresHarmlessly) {
    machine.random.script({lowest, highest, highest, middle});
    manager->start();
    machine.runLoop.advance(21);
    manager->stop();
    manager->start();
    machine.runLoop.advance(4);
    manager->stop();
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    machine.runLoop.advance(100);
    EXPECT_EQ(freezes(), 1U);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(FreezeManagerTest, WhenTwoChainsOverlapNoPanelIsLeftBehind) {
    // The restart freezes from 42 s on, the chain of the old freeze from 44 s on, each for 4 s.
    machine.random.script({lowest, highest, lowest, lowest, highest, highest});
    manager->start();
    machine.runLoop.advance(22);
    manager->stop();
    manager->start();
    machine.runLoop.advance(23);
    EXPECT_EQ(freezes(), 3U);
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(5);
    EXPECT_EQ(shown(), 0U);
}

TEST_F(FreezeManagerTest, WithoutAScreenTheCycleStallsUntilItIsRestarted) {
    machine.random.script({lowest, lowest});
    machine.screens.setMainScreen(std::nullopt);
    manager->start();
    machine.runLoop.advance(100);
    EXPECT_TRUE(manager->isActive());
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    machine.screens.setMainScreen(Rect{.x = 0, .y = 0, .width = 800, .height = 600});
    manager->start();
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    manager->stop();
    manager->start();
    machine.runLoop.advance(20);
    EXPECT_EQ(shown(), 1U);
}

TEST_F(FreezeManagerTest, PendingTimersDoNothingAfterItsDestruction) {
    machine.random.script({lowest});
    manager->start();
    machine.runLoop.advance(21);
    manager.reset();
    EXPECT_EQ(shown(), 1U) << "a shown panel stays up";
    machine.runLoop.advance(100);
    EXPECT_EQ(freezes(), 1U);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(FreezeManagerTest, ThePanelsTimeLimitIsTheLengthOfItsFreeze) {
    machine.random.script({lowest, highest / 4, lowest, highest});
    manager->start();
    machine.runLoop.advance(20);
    ASSERT_EQ(freezes(), 1U);
    EXPECT_EQ(machine.screens.panels().at(0)->timeLimit, 3.25);
    machine.runLoop.advance(23.25);
    ASSERT_EQ(freezes(), 2U);
    EXPECT_EQ(machine.screens.panels().at(1)->timeLimit, 4);
    manager->stop();
}

} // namespace
} // namespace quorvane
