#include "effects/crash/BSODManager.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

/// Stop screens when the wall clock is set and when the main thread is late.
class BSODManagerClockTest : public testing::Test {
protected:
    [[nodiscard]] std::size_t shown() const { return machine.screens.shownPanels().size(); }

    SimulatedMachine machine;
    std::shared_ptr<BSODManager> manager = BSODManager::create(machine.platform());
};

TEST_F(BSODManagerClockTest, ProgressIsTheShareOfFiveSecondsOnTheWallClock) {
    manager->start();
    machine.runLoop.advance(15);
    EXPECT_EQ(manager->progress(), 0);
    machine.runLoop.advance(2.5);
    EXPECT_NEAR(manager->progress(), 0.5, 1e-6);
    // While the machine sleeps, only the wall clock moves.
    machine.runLoop.sleep(2);
    machine.runLoop.advance(1.0 / 60);
    EXPECT_NEAR(manager->progress(), 0.9 + 1.0 / 300, 1e-4);
}

TEST_F(BSODManagerClockTest, ALateTickMakesProgressExactlyOneAndNeverMore) {
    manager->start();
    machine.runLoop.advance(16);
    double highest = 0;
    const auto subscription = manager->progress().observe(
        [&] { highest = std::max(highest, manager->progress().get()); });
    machine.runLoop.block(8);
    machine.runLoop.advance(0);
    EXPECT_EQ(highest, 1.0);
    EXPECT_EQ(manager->progress(), 1.0);
    EXPECT_EQ(shown(), 0U);
}

TEST_F(BSODManagerClockTest, ALateScreenIsReplacedByTheNextOneAndNoPanelIsLeft) {
    manager->start();
    machine.runLoop.advance(29);
    machine.runLoop.block(14.5);
    machine.runLoop.advance(0.5);
    ASSERT_EQ(shown(), 1U) << "the one of 30 s, 13.5 s late";
    machine.runLoop.advance(1);
    ASSERT_EQ(machine.screens.panels().size(), 3U) << "the one of 45 s";
    EXPECT_EQ(machine.screens.panels().at(1)->calls.back(), "out");
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(4.99);
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(0.01);
    EXPECT_EQ(shown(), 0U);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "only one progress timer ran";
}

TEST_F(BSODManagerClockTest, ALateScreenGoesWhenTheNextOneFindsNoMainScreen) {
    manager->start();
    machine.runLoop.advance(29);
    machine.runLoop.block(14.5);
    machine.runLoop.advance(0);
    ASSERT_EQ(shown(), 1U);
    machine.screens.setMainScreen(std::nullopt);
    machine.runLoop.advance(1.5);
    EXPECT_EQ(shown(), 0U);
    EXPECT_TRUE(manager->isShowing());
}

TEST_F(BSODManagerClockTest, AClockSetForwardCompletesAtTheNextTick) {
    manager->start();
    machine.runLoop.advance(16);
    machine.runLoop.setDate(machine.runLoop.currentDate() + 3600);
    machine.runLoop.advance(1.0 / 60);
    EXPECT_EQ(manager->progress(), 1.0);
    EXPECT_EQ(shown(), 0U);
}

TEST_F(BSODManagerClockTest, AClockSetBackALittleTakesTheProgressBack) {
    manager->start();
    machine.runLoop.advance(17.5);
    machine.runLoop.setDate(machine.runLoop.currentDate() - 1);
    machine.runLoop.advance(1.0 / 60);
    EXPECT_NEAR(manager->progress(), 0.3 + 1.0 / 300, 1e-4);
    EXPECT_EQ(shown(), 1U);
}

TEST_F(BSODManagerClockTest, AClockSetBackNeitherLengthensTheScreenNorLeavesAPanel) {
    manager->start();
    machine.runLoop.advance(16);
    double lowest = 1;
    const auto subscription =
        manager->progress().observe([&] { lowest = std::min(lowest, manager->progress().get()); });
    machine.runLoop.setDate(machine.runLoop.currentDate() - 12);
    machine.runLoop.advance(3.99);
    EXPECT_EQ(shown(), 1U);
    EXPECT_EQ(manager->progress(), 0.0);
    EXPECT_EQ(lowest, 0.0);
    machine.runLoop.advance(0.01);
    EXPECT_EQ(shown(), 0U);
    EXPECT_FALSE(manager->isShowing());
    EXPECT_EQ(manager->progress(), 1.0);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    machine.runLoop.advance(10);
    EXPECT_EQ(shown(), 1U);
    manager->stop();
    EXPECT_EQ(shown(), 0U);
}

} // namespace
} // namespace quorvane
