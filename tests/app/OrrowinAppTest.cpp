#include "tests/app/OrrowinAppFixture.h"

namespace quorvane {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Screen = ContentView::Screen;

using OrrowinAppTest = OrrowinAppFixture;

TEST_F(OrrowinAppTest, TheWindowHasItsTitleAndItsSize) {
    EXPECT_EQ(OrrowinApp::windowTitle, "Quorvane");
    EXPECT_EQ(OrrowinApp::windowWidth, 550);
    EXPECT_EQ(OrrowinApp::windowHeight, 780);
}

TEST_F(OrrowinAppTest, TheStartupExperienceIsLiveBeforeThereIsAWindow) {
    app.emplace(machine.platform());
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [STARTUP] tractor.mp3 loaded",
                            "✅ [RUMBLE] Buffer generated: 25.0Hz + 12.5Hz sub"));
    wakeUp();
    EXPECT_THAT(sounding(), ElementsAre("tractor", "node"));
}

TEST_F(OrrowinAppTest, TheWindowMakesItsEffectsInTheirOrder) {
    app.emplace(machine.platform());
    machine.console.lines.clear();
    view = app->makeContentView();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [KEYBOARD] keyboard.mp3 loaded", "✅ [FAN] fanmac.mp3 loaded"));
    view->onAppear();
    EXPECT_EQ(machine.console.lines.back(), "✅ Φορτώθηκε: creaking.mp3 (6.0s)");
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, true));
}

TEST_F(OrrowinAppTest, AFirstLaunchLeadsThroughTheCheckAndTheWarningToThePanel) {
    app.emplace(machine.platform());
    view = app->makeContentView();
    view->onAppear();
    EXPECT_EQ(view->screen(), Screen::HardwareCheck);
    view->runHardwareCheck();
    machine.runLoop.advance(1.5);
    for (const CheckRow& row : view->checkRows())
        EXPECT_TRUE(row.passed) << row.feature;
    view->confirmHardwareCheck();
    EXPECT_EQ(view->screen(), Screen::Warning);
    view->enterSufferingMode();
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
    EXPECT_TRUE(view->sensor().isRunning());
}

// All of it.

TEST_F(OrrowinAppTest, TheStopButtonEndsEverythingAtOnce) {
    enterPanel();
    for (const ToggleRow& row : view->toggleRows())
        row.setOn(true);
    EXPECT_THAT(switches(), ElementsAre(true, true, true, true, true, true));
    machine.runLoop.advance(40);
    // A stop screen at 45 s; what else is up then is as may be.
    machine.runLoop.advance(5.5);
    moveLid();
    machine.runLoop.advance(0.5);
    press();
    EXPECT_THAT(sounding(), testing::UnorderedElementsAre("fanmac", "node", "keyboard"));
    EXPECT_THAT(panels(), testing::Contains("stop screen"));
    const auto pulses = machine.haptics.pulses().size();

    view->leaveSufferingMode();
    EXPECT_EQ(view->screen(), Screen::Warning);
    EXPECT_THAT(switches(), Each(false));
    EXPECT_THAT(switches(), SizeIs(6));
    EXPECT_THAT(panels(), IsEmpty());
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
    EXPECT_EQ(machine.audio.holdCount(), 0U);
    EXPECT_THAT(sounding(), ElementsAre("keyboard")) << "the last crack sounds to its end";
    machine.runLoop.advance(60);
    EXPECT_THAT(sounding(), IsEmpty());
    EXPECT_THAT(panels(), IsEmpty());
    EXPECT_EQ(machine.haptics.pulses().size(), pulses);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle) << "the sensor and the particles";
    wakeUp();
    EXPECT_THAT(sounding(), IsEmpty());
}

TEST_F(OrrowinAppTest, TheStopButtonLeavesAStartupSequenceToItsEnd) {
    enterPanel();
    wakeUp();
    machine.runLoop.advance(1);
    view->leaveSufferingMode();
    EXPECT_THAT(sounding(), ElementsAre("tractor", "node"));
    machine.runLoop.advance(7);
    EXPECT_THAT(sounding(), IsEmpty());
    EXPECT_EQ(machine.console.lines.back(), "🚜 [STARTUP] Sequence complete");
}

TEST_F(OrrowinAppTest, ClosingTheWindowAndTheProgramLeavesNothingBehind) {
    enterPanel();
    for (const ToggleRow& row : view->toggleRows())
        row.setOn(true);
    machine.runLoop.advance(16);
    view->onDisappear();
    EXPECT_THAT(panels(), IsEmpty());
    EXPECT_THAT(sounding(), IsEmpty());
    EXPECT_FALSE(view->sensor().isRunning());
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "the particles";
    view.reset();
    EXPECT_EQ(machine.defaultCenter.observerCount(), 0U);
    EXPECT_EQ(machine.workspace.observerCount(), 1U) << "wake-ups, for the program";
    app.reset();
    EXPECT_EQ(machine.workspace.observerCount(), 0U);
    EXPECT_EQ(machine.audio.runningEngineCount(), 0U);
    machine.runLoop.advance(60);
    EXPECT_THAT(sounding(), IsEmpty());
}

} // namespace
} // namespace quorvane
