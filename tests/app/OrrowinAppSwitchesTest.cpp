#include "tests/app/OrrowinAppFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using OrrowinAppSwitchesTest = OrrowinAppFixture;

TEST_F(OrrowinAppSwitchesTest, BuildQualityCreaksWhileTheLidMoves) {
    enterPanel();
    turn("Build quality", true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
    moveLid();
    machine.runLoop.advance(1);
    EXPECT_THAT(sounding(), ElementsAre("node"));
    machine.runLoop.advance(2);
    EXPECT_THAT(sounding(), IsEmpty());
}

TEST_F(OrrowinAppSwitchesTest, KeyboardCracksAtAKey) {
    enterPanel();
    press();
    EXPECT_THAT(sounding(), IsEmpty());
    turn("Keyboard", true);
    press();
    EXPECT_THAT(sounding(), ElementsAre("keyboard"));
    turn("Keyboard", false);
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
}

TEST_F(OrrowinAppSwitchesTest, ThermalsRoarsAndBuzzes) {
    enterPanel();
    turn("Thermals", true);
    machine.runLoop.advance(60);
    EXPECT_THAT(sounding(), ElementsAre("fanmac"));
    EXPECT_THAT(machine.haptics.pulses(), SizeIs(2400));
    turn("Thermals", false);
    machine.runLoop.advance(60);
    EXPECT_THAT(sounding(), IsEmpty());
    EXPECT_THAT(machine.haptics.pulses(), SizeIs(2400));
}

TEST_F(OrrowinAppSwitchesTest, StabilityShowsAStopScreenEveryFifteenSecondsForFive) {
    enterPanel();
    turn("Stability", true);
    machine.runLoop.advance(14.99);
    EXPECT_THAT(panels(), IsEmpty());
    for (int i = 0; i < 3; ++i) {
        machine.runLoop.advance(0.02);
        EXPECT_THAT(panels(), ElementsAre("stop screen"));
        machine.runLoop.advance(5.03);
        EXPECT_THAT(panels(), IsEmpty());
        machine.runLoop.advance(9.95);
    }
}

TEST_F(OrrowinAppSwitchesTest, PerformanceFreezesWithinFortySecondsForAtMostFour) {
    enterPanel();
    turn("Performance", true);
    machine.runLoop.advance(19.99);
    EXPECT_THAT(machine.screens.panels(), IsEmpty());
    machine.runLoop.advance(20.02);
    ASSERT_THAT(machine.screens.panels(), SizeIs(1));
    EXPECT_EQ(machine.screens.panels()[0]->calls.at(2), "opaque no");
    machine.runLoop.advance(4);
    EXPECT_EQ(machine.screens.panels()[0]->calls.back(), "out");
}

TEST_F(OrrowinAppSwitchesTest, PerformanceSwitchedOnTwiceIsOneChainOfFreezes) {
    enterPanel();
    turn("Performance", true);
    turn("Performance", true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
}

TEST_F(OrrowinAppSwitchesTest, PerformanceSwitchedOffAndOnInAFreezeIsTwoChains) {
    enterPanel();
    turn("Performance", true);
    for (int i = 0; i < 81 && panels().empty(); ++i)
        machine.runLoop.advance(0.5);
    ASSERT_THAT(panels(), ElementsAre("freeze"));
    turn("Performance", false);
    EXPECT_THAT(panels(), IsEmpty());
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1) << "the end of the freeze still comes";
    turn("Performance", true);
    machine.runLoop.advance(4);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 2) << "two waits side by side";
    machine.runLoop.advance(16);
    EXPECT_THAT(machine.screens.panels(), SizeIs(1));
    view->leaveSufferingMode();
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1) << "the older wait is not held";
    machine.runLoop.advance(60);
    EXPECT_THAT(machine.screens.panels(), SizeIs(1));
    EXPECT_EQ(machine.runLoop.pendingCount(), idle);
}

TEST_F(OrrowinAppSwitchesTest, StartupDecidesWhetherAWakeUpIsHeard) {
    enterPanel();
    turn("Startup", false);
    wakeUp();
    EXPECT_THAT(sounding(), IsEmpty());
    turn("Startup", true);
    wakeUp();
    EXPECT_THAT(sounding(), ElementsAre("tractor", "node"));
    machine.runLoop.advance(8);
    EXPECT_THAT(sounding(), IsEmpty());
}

} // namespace
} // namespace quorvane
