#include "effects/crash/BSODManager.h"

#include <algorithm>
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

TEST_F(BSODManagerTest, starts_idle_with_nothing_to_say) {
    EXPECT_FALSE(manager->isActive());
    EXPECT_FALSE(manager->isShowing());
    EXPECT_EQ(manager->errorMessage().get(), "");
    EXPECT_EQ(manager->errorCode().get(), "");
    EXPECT_EQ(manager->progress(), 0);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(BSODManagerTest, a_second_start_does_nothing) {
    manager->start();
    manager->start();
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    machine.runLoop.advance(15);
    EXPECT_EQ(machine.screens.panels().size(), 1U);
}

TEST_F(BSODManagerTest, the_first_screen_comes_at_15_s_goes_at_20_s_and_the_next_comes_at_30_s) {
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

TEST_F(BSODManagerTest, the_panel_is_made_by_the_recipe_step_by_step) {
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

TEST_F(BSODManagerTest, progress_is_the_share_of_five_seconds_on_the_wall_clock) {
    manager->start();
    machine.runLoop.advance(15);
    EXPECT_EQ(manager->progress(), 0);
    machine.runLoop.advance(2.5);
    EXPECT_NEAR(manager->progress(), 0.5, 1e-6);
    // Asleep for two seconds: the timers' clock stood still, the wall clock did not.
    machine.runLoop.sleep(2);
    machine.runLoop.advance(1.0 / 60);
    EXPECT_NEAR(manager->progress(), 0.9 + 1.0 / 300, 1e-4);
}

TEST_F(BSODManagerTest, a_late_tick_makes_progress_exactly_one_and_never_more) {
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

TEST_F(BSODManagerTest, a_late_screen_is_replaced_by_the_next_one_and_no_panel_is_left) {
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

TEST_F(BSODManagerTest, a_late_screen_goes_when_the_next_one_finds_no_main_screen) {
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

TEST_F(BSODManagerTest, a_clock_set_forward_completes_at_the_next_tick) {
    manager->start();
    machine.runLoop.advance(16);
    machine.runLoop.setDate(machine.runLoop.currentDate() + 3600);
    machine.runLoop.advance(1.0 / 60);
    EXPECT_EQ(manager->progress(), 1.0);
    EXPECT_EQ(shown(), 0U);
}

TEST_F(BSODManagerTest, a_clock_set_back_a_little_takes_the_progress_back) {
    manager->start();
    machine.runLoop.advance(17.5);
    machine.runLoop.setDate(machine.runLoop.currentDate() - 1);
    machine.runLoop.advance(1.0 / 60);
    EXPECT_NEAR(manager->progress(), 0.3 + 1.0 / 300, 1e-4);
    EXPECT_EQ(shown(), 1U);
}

TEST_F(BSODManagerTest, a_clock_set_back_neither_lengthens_the_screen_nor_leaves_a_panel) {
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

TEST_F(BSODManagerTest, progress_and_texts_stay_until_the_next_screen) {
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

TEST_F(BSODManagerTest, rows_are_drawn_uniformly_over_six_and_may_repeat) {
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

TEST_F(BSODManagerTest, the_texts_are_set_before_the_progress_and_the_showing) {
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

TEST_F(BSODManagerTest, stop_while_a_screen_is_up_takes_it_away_at_once_and_keeps_the_progress) {
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

TEST_F(BSODManagerTest, stop_when_idle_is_harmless) {
    manager->stop();
    EXPECT_FALSE(manager->isActive());
}

TEST_F(BSODManagerTest, a_start_after_a_stop_begins_a_fresh_cadence) {
    manager->start();
    machine.runLoop.advance(14);
    manager->stop();
    manager->start();
    machine.runLoop.advance(14.9);
    EXPECT_EQ(shown(), 0U);
    machine.runLoop.advance(0.1);
    EXPECT_EQ(shown(), 1U);
}

TEST_F(BSODManagerTest, without_a_screen_there_is_no_panel_but_the_cycle_runs) {
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

TEST_F(BSODManagerTest, destruction_leaves_an_orphaned_timer_that_does_nothing) {
    manager->start();
    manager.reset();
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    machine.runLoop.advance(60);
    EXPECT_TRUE(machine.screens.panels().empty());
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "its block does not invalidate it";
}

TEST_F(BSODManagerTest,
       destruction_while_showing_leaves_the_panel_and_the_progress_timer_ends_itself) {
    manager->start();
    machine.runLoop.advance(16);
    manager.reset();
    EXPECT_EQ(shown(), 1U);
    machine.runLoop.advance(1);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    EXPECT_EQ(shown(), 1U);
}

TEST_F(BSODManagerTest, a_stop_from_an_observer_of_its_own_progress_is_safe) {
    manager->start();
    machine.runLoop.advance(15);
    const auto subscription = manager->progress().observe([&] { manager->stop(); });
    machine.runLoop.advance(1);
    EXPECT_EQ(shown(), 0U);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

} // namespace
} // namespace quorvane
