#include "effects/crash/BSODManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

using testing::ElementsAre;

class BSODManagerTest : public testing::Test {
protected:
    [[nodiscard]] std::size_t shown() const { return machine.screens.shownPanels().size(); }

    SimulatedMachine machine;
    std::shared_ptr<BSODManager> manager = BSODManager::create(machine.platform());
};

TEST_F(BSODManagerTest, StartsIdleWithEmptyTexts) {
    EXPECT_FALSE(manager->isActive());
    EXPECT_FALSE(manager->isShowing());
    EXPECT_EQ(manager->errorMessage().get(), "");
    EXPECT_EQ(manager->errorCode().get(), "");
    EXPECT_EQ(manager->progress(), 0);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(BSODManagerTest, ASecondStartDoesNothing) {
    manager->start();
    manager->start();
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    machine.runLoop.advance(15);
    EXPECT_EQ(machine.screens.panels().size(), 1U);
}

TEST_F(BSODManagerTest, TheFirstScreenComesAt15SGoesAt20SAndTheNextComesAt30S) {
    manager->start();
    machine.runLoop.advance(14.999);
    EXPECT_EQ(shown(), 0U);
    machine.runLoop.advance(0.001);
    EXPECT_EQ(shown(), 1U);
    EXPECT_TRUE(manager->isShowing());
    machine.runLoop.advance(4.99);
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(0.01);
    EXPECT_EQ(shown(), 0U);
    EXPECT_FALSE(manager->isShowing());
    machine.runLoop.advance(9.999);
    EXPECT_EQ(machine.screens.panels().size(), 1U);
    machine.runLoop.advance(0.001);
    EXPECT_EQ(shown(), 1U);
}

TEST_F(BSODManagerTest, ThePanelIsSetUpStepByStep) {
    machine.screens.setMainScreen(Rect{.x = 10, .y = 20, .width = 1280, .height = 800});
    manager->start();
    machine.runLoop.advance(15);
    EXPECT_THAT(machine.screens.panels().at(0)->calls,
                ElementsAre("create 10,20 1280x800 style 128 backing 2 defer no", "level 1000",
                            "opaque yes", "background 0,0.47,0.83,1", "behavior 257",
                            "content view", "frame 10,20 1280x800 display yes", "front"));
    EXPECT_NE(machine.screens.panels().at(0)->view, nullptr);
    EXPECT_EQ(machine.screens.panels().at(0)->timeLimit, 5);
}

TEST_F(BSODManagerTest, ProgressAndTextsStayUntilTheNextScreen) {
    machine.random.script({5, 3});
    manager->start();
    machine.runLoop.advance(21);
    EXPECT_EQ(manager->progress(), 1.0);
    EXPECT_EQ(manager->errorMessage().get(), "CRITICAL_PROCESS_DIED");
    EXPECT_EQ(manager->errorCode().get(), "0x000000EF");
    machine.runLoop.advance(9);
    EXPECT_EQ(manager->progress(), 0);
    EXPECT_EQ(manager->errorMessage().get(), "WINLOGON_FATAL_ERROR");
    EXPECT_EQ(manager->errorCode().get(), "0xC000021A");
}

TEST_F(BSODManagerTest, RowsAreDrawnUniformlyOverSixAndMayRepeat) {
    machine.random.script({2, 2});
    manager->start();
    std::vector<std::string> codes;
    for (int i = 0; i < 2; ++i) {
        machine.runLoop.advance(15);
        codes.push_back(manager->errorCode());
    }
    EXPECT_THAT(codes, ElementsAre("0x0000003B", "0x0000003B"));
    EXPECT_THAT(machine.random.bounds(), ElementsAre(5U, 5U));
    std::set<std::string> all;
    for (int i = 0; i < 200; ++i) {
        machine.runLoop.advance(15);
        all.insert(manager->errorCode());
    }
    EXPECT_EQ(all.size(), 6U);
}

TEST_F(BSODManagerTest, EveryStopCodeHasItsName) {
    machine.random.script({0, 1, 2, 3, 4, 5});
    manager->start();
    std::vector<std::string> rows;
    for (int i = 0; i < 6; ++i) {
        machine.runLoop.advance(15);
        rows.push_back(manager->errorCode().get() + " " + manager->errorMessage().get());
    }
    EXPECT_THAT(rows, ElementsAre("0x0000007E SYSTEM_THREAD_EXCEPTION_NOT_HANDLED",
                                  "0x000000D1 DRIVER_IRQL_NOT_LESS_OR_EQUAL",
                                  "0x0000003B SYSTEM_SERVICE_EXCEPTION",
                                  "0xC000021A WINLOGON_FATAL_ERROR",
                                  "0x00000050 PAGE_FAULT_IN_NONPAGED_AREA",
                                  "0x000000EF CRITICAL_PROCESS_DIED"));
}

TEST_F(BSODManagerTest, AtTheEndProgressIsCompleteBeforeTheShowingEnds) {
    manager->start();
    machine.runLoop.advance(15);
    double progressAtEnd = 0;
    std::size_t shownAtEnd = 0;
    const auto subscription = manager->isShowing().observe([&] {
        progressAtEnd = manager->progress();
        shownAtEnd = shown();
    });
    machine.runLoop.advance(5);
    EXPECT_EQ(progressAtEnd, 1.0);
    EXPECT_EQ(shownAtEnd, 1U) << "the panel is removed last";
}

TEST_F(BSODManagerTest, StopEndsTheActivityBeforeTheShowing) {
    manager->start();
    machine.runLoop.advance(16);
    bool activeAtEnd = true;
    const auto subscription =
        manager->isShowing().observe([&] { activeAtEnd = manager->isActive(); });
    manager->stop();
    EXPECT_FALSE(activeAtEnd);
}

TEST_F(BSODManagerTest, TheTextsAreSetBeforeTheProgressAndTheShowing) {
    machine.random.script({1, 0});
    manager->start();
    machine.runLoop.advance(21);
    std::vector<std::string> order;
    const auto note = [&](const AnyObservable& value, std::string name) {
        return value.observe([&order, name = std::move(name)] { order.push_back(name); });
    };
    const auto message = note(manager->errorMessage(), "message");
    const auto code = note(manager->errorCode(), "code");
    const auto progress = note(manager->progress(), "progress");
    const auto showing = note(manager->isShowing(), "showing");
    machine.runLoop.advance(9);
    EXPECT_THAT(order, ElementsAre("message", "code", "progress", "showing"));
}

TEST_F(BSODManagerTest, StopRemovesAScreenAtOnceAndKeepsTheProgress) {
    manager->start();
    machine.runLoop.advance(17);
    const double progress = manager->progress();
    manager->stop();
    EXPECT_EQ(shown(), 0U);
    EXPECT_FALSE(manager->isShowing());
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(manager->progress(), progress);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(BSODManagerTest, StopWhenIdleDoesNothing) {
    manager->stop();
    EXPECT_FALSE(manager->isActive());
}

TEST_F(BSODManagerTest, AStartAfterAStopWaitsFifteenSecondsAgain) {
    manager->start();
    machine.runLoop.advance(14);
    manager->stop();
    manager->start();
    machine.runLoop.advance(14.9);
    EXPECT_EQ(shown(), 0U);
    machine.runLoop.advance(0.1);
    EXPECT_EQ(shown(), 1U);
}

TEST_F(BSODManagerTest, WithoutAScreenThereIsNoPanelButTheCycleRuns) {
    machine.screens.setMainScreen(std::nullopt);
    manager->start();
    machine.runLoop.advance(15);
    EXPECT_TRUE(manager->isShowing());
    EXPECT_TRUE(machine.screens.panels().empty());
    machine.runLoop.advance(5);
    EXPECT_FALSE(manager->isShowing());
    EXPECT_EQ(manager->progress(), 1.0);
    machine.screens.setMainScreen(Rect{.x = 0, .y = 0, .width = 800, .height = 600});
    machine.runLoop.advance(10);
    EXPECT_EQ(shown(), 1U);
}

TEST_F(BSODManagerTest, DestructionLeavesAnOrphanedTimerThatDoesNothing) {
    manager->start();
    manager.reset();
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    machine.runLoop.advance(60);
    EXPECT_TRUE(machine.screens.panels().empty());
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "its block does not invalidate it";
}

TEST_F(BSODManagerTest, DestructionWhileShowingLeavesThePanelAndTheProgressTimerEndsItself) {
    manager->start();
    machine.runLoop.advance(16);
    manager.reset();
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(1);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    EXPECT_EQ(shown(), 1U);
}

TEST_F(BSODManagerTest, AStopFromAnObserverOfItsOwnProgressIsSafe) {
    manager->start();
    machine.runLoop.advance(15);
    const auto subscription = manager->progress().observe([&] { manager->stop(); });
    machine.runLoop.advance(1);
    EXPECT_EQ(shown(), 0U);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

} // namespace
} // namespace quorvane
