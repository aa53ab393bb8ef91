#include "tests/app/ContentViewFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Screen = ContentView::Screen;

using ContentViewAutoStartTest = ContentViewFixture;

TEST_F(ContentViewAutoStartTest, auto_start_enters_the_control_panel_without_animation) {
    addLid(100);
    makeReturningView();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
    EXPECT_EQ(view->screenAnimation().curve, Animation::Curve::None);
    EXPECT_TRUE(view->sensor().isRunning());
}

TEST_F(ContentViewAutoStartTest, auto_start_while_suffering_does_not_start_the_sensor_again) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    view->sensor().stop();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_FALSE(view->sensor().isRunning());
}

TEST_F(ContentViewAutoStartTest, auto_start_on_the_panel_with_switches_on_changes_nothing) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    for (const ToggleRow& each : view->toggleRows())
        each.setOn(true);
    const auto called = calls;
    const auto readings = lid->readings();
    const auto pending = machine.runLoop.pendingCount();
    int notices = 0;
    const auto suffering = view->sufferingMode().observe([&] { ++notices; });
    const auto screen = view->screen().observe([&] { ++notices; });
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_EQ(notices, 0);
    EXPECT_EQ(calls, called);
    EXPECT_EQ(lid->readings(), readings);
    EXPECT_EQ(machine.runLoop.pendingCount(), pending);
    EXPECT_THAT(switches(), ElementsAre(true, true, true, true, true, true));
    EXPECT_EQ(view->screenAnimation().curve, Animation::Curve::Spring);
}

TEST_F(ContentViewAutoStartTest, auto_start_comes_by_the_default_centre_only) {
    makeReturningView();
    machine.workspace.post("autoStartSimulation");
    EXPECT_FALSE(view->sufferingMode());
}

TEST_F(ContentViewAutoStartTest, auto_start_before_the_check_finds_no_sensor_to_start) {
    addLid(100);
    makeView().onAppear();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_FALSE(view->sensor().isRunning());
    view->runHardwareCheck();
    machine.runLoop.advance(1.5);
    view->confirmHardwareCheck();
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
    EXPECT_FALSE(view->sensor().isRunning())
        << "nothing starts it until the panel is entered again";
}

TEST_F(ContentViewAutoStartTest, auto_start_after_the_check_starts_the_sensor_behind_its_results) {
    addLid(100);
    makeView().onAppear();
    view->runHardwareCheck();
    machine.runLoop.advance(1.5);
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_TRUE(view->sensor().isRunning());
    EXPECT_EQ(view->screen(), Screen::HardwareCheck);
    view->confirmHardwareCheck();
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(ContentViewAutoStartTest,
       auto_start_on_the_hardware_check_leads_to_the_panel_once_it_is_confirmed) {
    makeView().onAppear();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_TRUE(view->sufferingMode());
    EXPECT_EQ(view->screen(), Screen::HardwareCheck);
    view->confirmHardwareCheck();
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
}

} // namespace
} // namespace quorvane
