#include "tests/app/OrrowinAppFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using OrrowinAppSwitchesTest = OrrowinAppFixture;

TEST_F(OrrowinAppSwitchesTest, build_quality_creaks_while_the_lid_moves) {
    enterPanel();
    turn("Build quality", true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
    moveLid();
    machine.runLoop.advance(1);
    EXPECT_THAT(sounding(), ElementsAre("node"));
    machine.runLoop.advance(2);
    EXPECT_THAT(sounding(), IsEmpty());
}

TEST_F(OrrowinAppSwitchesTest, keyboard_cracks_at_a_key) {
    enterPanel();
    press();
    EXPECT_THAT(sounding(), IsEmpty());
    turn("Keyboard", true);
    press();
    EXPECT_THAT(sounding(), ElementsAre("keyboard"));
    turn("Keyboard", false);
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
}

TEST_F(OrrowinAppSwitchesTest, thermals_roars_and_buzzes) {
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

TEST_F(OrrowinAppSwitchesTest, stability_shows_a_stop_screen_every_fifteen_seconds_for_five) {
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

TEST_F(OrrowinAppSwitchesTest, performance_freezes_within_forty_seconds_for_at_most_four) {
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

TEST_F(OrrowinAppSwitchesTest, performance_switched_on_twice_is_one_chain_of_freezes) {
    enterPanel();
    turn("Performance", true);
    turn("Performance", true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
}

TEST_F(OrrowinAppSwitchesTest, performance_switched_off_and_on_in_a_freeze_is_two_chains) {
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

TEST_F(OrrowinAppSwitchesTest, startup_decides_whether_a_wake_up_is_heard) {
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
