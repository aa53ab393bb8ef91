#include "tests/app/ContentViewFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Screen = ContentView::Screen;

using ContentViewAutoStartTest = ContentViewFixture;

TEST_F(ContentViewAutoStartTest, AutoStartEntersTheControlPanelWithoutAnimation) {
    addLid(100);
    makeReturningView();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
    EXPECT_EQ(view->screenAnimation().curve, Animation::Curve::None);
    EXPECT_TRUE(view->sensor().isRunning());
}

TEST_F(ContentViewAutoStartTest, AutoStartWhileSufferingDoesNotStartTheSensorAgain) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    view->sensor().stop();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_FALSE(view->sensor().isRunning());
}

TEST_F(ContentViewAutoStartTest, AutoStartOnThePanelWithSwitchesOnChangesNothing) {
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

TEST_F(ContentViewAutoStartTest, AutoStartIsANotificationOfTheDefaultCentreOnly) {
    makeReturningView();
    machine.workspace.post("autoStartSimulation");
    EXPECT_FALSE(view->sufferingMode());
}

TEST_F(ContentViewAutoStartTest, AutoStartBeforeTheCheckFindsNoSensorToStart) {
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

TEST_F(ContentViewAutoStartTest, AutoStartAfterTheCheckStartsTheSensorBehindItsResults) {
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

TEST_F(ContentViewAutoStartTest, AutoStartOnTheHardwareCheckLeadsToThePanelOnceItIsConfirmed) {
    makeView().onAppear();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_TRUE(view->sufferingMode());
    EXPECT_EQ(view->screen(), Screen::HardwareCheck);
    view->confirmHardwareCheck();
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
}

} // namespace
} // namespace quorvane
