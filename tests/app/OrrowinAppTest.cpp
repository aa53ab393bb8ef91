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
    std::vector<std::string_view> labels;
    for (const ToggleRow& row : view->toggleRows())
        labels.push_back(row.text.label);
    EXPECT_THAT(labels, ElementsAre("Build quality", "Keyboard", "Thermals", "Stability",
                                    "Performance", "Startup"));
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

// Everything together.

TEST_F(OrrowinAppTest, TheStopButtonEndsEverythingAtOnce) {
    enterPanel();
    for (const ToggleRow& row : view->toggleRows())
        row.setOn(true);
    EXPECT_THAT(switches(), ElementsAre(true, true, true, true, true, true));
    machine.runLoop.advance(40);
    // A stop screen is shown at 45 s; a freeze may be.
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

// Each switch.

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
    for (int i = 0; i < 81 && panels().empty(); ++i)
        machine.runLoop.advance(0.5);
    ASSERT_THAT(panels(), ElementsAre("freeze"));
    turn("Performance", true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1) << "the end of the freeze";
    machine.runLoop.advance(4);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1) << "the next wait";
    EXPECT_THAT(machine.screens.panels(), SizeIs(1));
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
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1)
        << "the older timer's handle was overwritten";
    machine.runLoop.advance(60);
    EXPECT_THAT(machine.screens.panels(), SizeIs(1));
    EXPECT_EQ(machine.runLoop.pendingCount(), idle);
}

TEST_F(OrrowinAppSwitchesTest, KeyboardStaysOffWithAHintOnceTrustIsWithdrawn) {
    enterPanel();
    turn("Keyboard", true);
    const ToggleRow& row = view->toggleRows().at(1);
    EXPECT_TRUE(row.isOn->get());
    machine.accessibility.trusted = false;
    turn("Keyboard", false);
    turn("Keyboard", true);
    EXPECT_FALSE(row.isOn->get());
    EXPECT_EQ(row.hint->get(), "Accessibility permission needed — enable in System Settings");
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
    EXPECT_EQ(machine.audio.holdCount(), 0U);
    machine.accessibility.trusted = true;
    machine.runLoop.advance(3);
    EXPECT_TRUE(row.isOn->get()) << "given again before the retry";
    EXPECT_EQ(row.hint->get(), "");
}

TEST_F(OrrowinAppSwitchesTest, KeyboardWithoutItsSoundAsksNobodyAndHasNoHint) {
    machine.audio.addNonAudioFile("sounds/keyboard.mp3");
    enterPanel();
    machine.accessibility.trusted = false;
    turn("Keyboard", true);
    const ToggleRow& row = view->toggleRows().at(1);
    EXPECT_FALSE(row.isOn->get());
    EXPECT_EQ(machine.accessibility.prompts, 0);
    EXPECT_EQ(row.hint->get(), "");
}

TEST_F(OrrowinAppSwitchesTest, StopButtonTakesThePromptAway) {
    enterPanel();
    machine.accessibility.trusted = false;
    turn("Keyboard", true);
    EXPECT_EQ(machine.accessibility.prompts, 1);
    const int before = machine.accessibility.withdrawals;
    view->leaveSufferingMode();
    EXPECT_EQ(machine.accessibility.withdrawals, before + 1);
}

TEST_F(OrrowinAppSwitchesTest, OverlaysThatTheDesktopCannotShowHaveAHintAndNoOtherRowHas) {
    enterPanel();
    machine.screens.setObstacle("Not on this desktop");
    for (const ToggleRow& row : view->toggleRows())
        row.setOn(true);
    std::vector<std::string> hints;
    for (const ToggleRow& row : view->toggleRows())
        hints.push_back(row.hint != nullptr ? row.hint->get() : "");
    EXPECT_THAT(hints, ElementsAre("", "", "", "Not on this desktop", "Not on this desktop", ""));
}

TEST_F(OrrowinAppSwitchesTest, StartupDecidesWhetherAWakeUpPlays) {
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
