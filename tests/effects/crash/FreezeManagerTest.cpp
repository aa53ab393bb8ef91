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

// RandomGenerator are of 0 to 2^53.
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

TEST_F(FreezeManagerTest, waits_freezes_and_waits_again_from_the_end_of_the_freeze) {
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

TEST_F(FreezeManagerTest, both_ends_of_both_ranges_can_be_reached) {
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

TEST_F(FreezeManagerTest, the_panel_is_made_by_the_recipe_step_by_step) {
    machine.random.script({lowest});
    manager->start();
    machine.runLoop.advance(20);
    EXPECT_THAT(machine.screens.panels().at(0)->calls,
                ElementsAre("create 0,0 1440x900 style 128 backing 2 defer no", "level 1000",
                            "opaque no", "background 0,0,0,0", "behavior 257", "ignores mouse no",
                            "content view", "frame 0,0 1440x900 display yes", "front"));
}

TEST_F(FreezeManagerTest, the_panel_shows_the_freeze_view) {
    manager->start();
    machine.runLoop.advance(40);
    const auto& view = machine.screens.panels().at(0)->view;
    EXPECT_NE(dynamic_cast<const FreezeView*>(view.get()), nullptr);
}

TEST_F(FreezeManagerTest, each_freeze_draws_its_length_and_then_the_wait_after_it) {
    machine.random.script({highest, highest});
    manager->start();
    EXPECT_EQ(machine.random.bounds().size(), 1U);
    machine.runLoop.advance(40);
    EXPECT_EQ(machine.random.bounds().size(), 2U);
    machine.runLoop.advance(4);
    EXPECT_THAT(machine.random.bounds(),
                ElementsAre(9007199254740992, 9007199254740992, 9007199254740992));
}

TEST_F(FreezeManagerTest, it_follows_the_screen_that_is_the_main_one_by_then) {
    manager->start();
    machine.screens.setMainScreen(Rect{.x = 100, .y = 50, .width = 800, .height = 600});
    machine.runLoop.advance(40);
    EXPECT_EQ(machine.screens.panels().at(0)->calls.front(),
              "create 100,50 800x600 style 128 backing 2 defer no");
    EXPECT_EQ(machine.screens.panels().at(0)->calls.at(7), "frame 100,50 800x600 display yes");
}

TEST_F(FreezeManagerTest, it_is_active_before_it_waits_and_inactive_before_the_panel_goes) {
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

TEST_F(FreezeManagerTest, the_panel_is_ordered_out_once) {
    machine.random.script({lowest, lowest});
    manager->start();
    machine.runLoop.advance(23);
    manager->stop();
    const auto& calls = machine.screens.panels().at(0)->calls;
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "out"), 1);
}

TEST_F(FreezeManagerTest, may_be_let_go_of_on_another_thread) {
    manager->start();
    std::thread([last = std::move(manager)]() mutable { last.reset(); }).join();
    machine.runLoop.runMainQueue();
    machine.runLoop.advance(100);
    EXPECT_EQ(freezes(), 0U);
}

TEST_F(FreezeManagerTest, a_start_while_active_schedules_nothing) {
    manager->start();
    manager->start();
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
}

TEST_F(FreezeManagerTest, stop_during_a_freeze_clears_it_and_its_end_does_nothing) {
    machine.random.script({lowest, highest});
    manager->start();
    machine.runLoop.advance(21);
    manager->stop();
    EXPECT_EQ(shown(), 0U);
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "the end of the freeze cannot be cancelled";
    machine.runLoop.advance(3);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U) << "its end begins no wait";
    machine.runLoop.advance(100);
    EXPECT_EQ(freezes(), 1U);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(FreezeManagerTest, stop_while_waiting_ends_the_wait) {
    manager->start();
    manager->stop();
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(FreezeManagerTest, stop_when_idle_is_harmless) {
    manager->stop();
    EXPECT_FALSE(manager->isActive());
}

TEST_F(FreezeManagerTest, stop_and_start_within_a_freeze_make_two_chains_side_by_side) {
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

TEST_F(FreezeManagerTest, stop_ends_only_the_newer_of_two_chains_and_the_other_fires_harmlessly) {
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

TEST_F(FreezeManagerTest, when_two_chains_overlap_no_panel_is_left_behind) {
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

TEST_F(FreezeManagerTest, without_a_screen_the_cycle_stalls_until_it_is_started_anew) {
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

TEST_F(FreezeManagerTest, what_is_pending_does_nothing_once_it_is_gone) {
    machine.random.script({lowest});
    manager->start();
    machine.runLoop.advance(21);
    manager.reset();
    EXPECT_EQ(shown(), 1U) << "a panel that is up stays up";
    machine.runLoop.advance(100);
    EXPECT_EQ(freezes(), 1U);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

} // namespace
} // namespace quorvane
