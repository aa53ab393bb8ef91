#include "tests/app/ContentViewFixture.h"

#include <algorithm>

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using ContentViewRowsTest = ContentViewFixture;

const std::vector<ToggleRowText> rowTexts{
    {.icon = "door.left.hand.open",
     .label = "Build quality",
     .infoTitle = "Build Quality",
     .info = "Premium hinge quality simulation. Experience the authentic build quality of a real "
             "Windows laptop.\n\n"
             "Try moving your laptop lid to feel the difference."},
    {.icon = "keyboard",
     .label = "Keyboard",
     .infoTitle = "Tactile Feedback",
     .info = "Genuine keyboard feedback. Feel the premium tactile response of original Windows "
             "hardware.\n\n"
             "Just start typing anything."},
    {.icon = "fan",
     .label = "Thermals",
     .infoTitle = "Thermal Performance",
     .info = "Original Windows fan acoustics. Authentic thermal management at its finest.\n\n"
             "Enable and enjoy. Trackpad vibration included."},
    {.icon = "exclamationmark.triangle",
     .label = "Stability",
     .infoTitle = "System Stability",
     .info =
         "Experience the legendary Windows stability. Random crashes included at no extra cost.\n\n"
         "Sit back and wait. It will happen."},
    {.icon = "snowflake",
     .label = "Performance",
     .infoTitle = "Multitasking Performance",
     .info = "Advanced multitasking optimization. Your Mac will occasionally take a moment to "
             "think.\n\n"
             "Just keep using your Mac normally. Freezes will come to you."},
    {.icon = "power",
     .label = "Startup",
     .infoTitle = "Boot Experience",
     .info = "The iconic startup experience. Relive the classic moment of booting a real Windows "
             "machine.\n\n"
             "Close the lid and open it again to hear it."},
};

TEST_F(ContentViewRowsTest, TheRowsHaveTheirOrderAndTexts) {
    makeView();
    std::vector<ToggleRowText> texts;
    for (const ToggleRow& each : view->toggleRows())
        texts.push_back(each.text);
    EXPECT_THAT(texts, ElementsAreArray(rowTexts));
}

TEST_F(ContentViewRowsTest, AnInfoButtonFillsThePopupAndDismissalLeavesItsTexts) {
    makeReturningView();
    for (const ToggleRowText& row : rowTexts) {
        view->presentInfo(row);
        EXPECT_TRUE(view->showInfo());
        view->dismissInfo();
        EXPECT_FALSE(view->showInfo());
        EXPECT_EQ(view->activeInfoLabel().get(), row.infoTitle);
        EXPECT_EQ(view->activeInfoText().get(), row.info);
    }
}

TEST_F(ContentViewRowsTest, ThePopupHasItsTextsBeforeItIsShown) {
    makeReturningView();
    std::string label;
    std::string text;
    const auto shown = view->showInfo().observe([&] {
        label = view->activeInfoLabel();
        text = view->activeInfoText();
    });
    view->presentInfo(rowTexts[2]);
    EXPECT_EQ(label, "Thermal Performance");
    EXPECT_EQ(text, "Original Windows fan acoustics. Authentic thermal management at its finest."
                    "\n\nEnable and enjoy. Trackpad vibration included.");
}

TEST_F(ContentViewRowsTest, ThePopupIsIndependentOfTheSwitches) {
    makeReturningView().enterSufferingMode();
    view->presentInfo(rowTexts[0]);
    view->leaveSufferingMode();
    EXPECT_TRUE(view->showInfo());
    EXPECT_FALSE(view->audioEnabled());
}

using ContentViewSwitchesTest = ContentViewFixture;

// The creak's switch.

TEST_F(ContentViewSwitchesTest, TheVelocityFeedRunsSixtyTimesASecondOnlyWhileTheSwitchIsOn) {
    makeReturningView().enterSufferingMode();
    const auto idle = machine.runLoop.pendingCount();
    row("Build quality").setOn(true);
    EXPECT_TRUE(view->audioEnabled());
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
    EXPECT_NEAR(*machine.runLoop.nextDeadline() - machine.runLoop.currentMediaTime(), 1.0 / 60,
                1e-9);
    row("Build quality").setOn(false);
    EXPECT_FALSE(view->audioEnabled());
    EXPECT_EQ(machine.runLoop.pendingCount(), idle);
}

TEST_F(ContentViewSwitchesTest, AMovingLidCreaksWhileTheSwitchIsOn) {
    addLid(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle(
        [start](double time) { return 100 + 50 * std::clamp(time - start - 1, 0.0, 1.0); });
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    machine.runLoop.advance(1);
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
    machine.runLoop.advance(0.5);
    EXPECT_TRUE(view->audioManager().isPlaying());
    machine.runLoop.advance(1);
    EXPECT_FALSE(view->audioManager().isPlaying());
    const auto& sounds = machine.audio.timeline();
    ASSERT_EQ(sounds.size(), 1U);
    // The first whole degree shows after 0.01 s (the sensor rounds), the slope is 0 once the last
    // moving sample has left the window of 0.2 s; polls and feeds add a period each.
    EXPECT_NEAR(sounds[0].startTime, start + 1.01, 1.0 / 30 + 1.0 / 60);
    EXPECT_NEAR(sounds[0].stopTime, start + 2.2, 2.0 / 30 + 1.0 / 60);
}

TEST_F(ContentViewSwitchesTest, AMovingLidIsSilentWhileTheSwitchIsOff) {
    addLid(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle([start](double time) { return 100 + 20 * (time - start); });
    makeReturningView().enterSufferingMode();
    machine.runLoop.advance(2);
    EXPECT_NE(view->sensor().velocity(), 0);
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
}

TEST_F(ContentViewSwitchesTest, WithoutASensorWakingScreensCreakForTheLengthOfTheBurst) {
    machine.audio.addFile(creakPath, {.sampleRate = 1000, .channels = 1},
                          std::vector<float>(4000, 0.5F));
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    machine.workspace.post("NSWorkspaceScreensDidWakeNotification");
    machine.runLoop.advance(5);
    const auto& sounds = machine.audio.timeline();
    ASSERT_EQ(sounds.size(), 1U);
    EXPECT_NEAR(sounds[0].stopTime - sounds[0].startTime, 3.05, 1.0 / 60 + 1e-9);
}

TEST_F(ContentViewSwitchesTest, SwitchingTheCreakOffSilencesItAtOnceAndRewinds) {
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    machine.workspace.post("NSWorkspaceScreensDidWakeNotification");
    machine.runLoop.advance(0.5);
    view->setHingeCreak(false);
    EXPECT_FALSE(view->audioManager().isPlaying());
    machine.runLoop.advance(0.1);
    view->setHingeCreak(true);
    machine.runLoop.advance(0.1);
    EXPECT_EQ(machine.audio.timeline().back().offset, 0);
}

TEST_F(ContentViewSwitchesTest, CreakOnOffOnLeavesExactlyOneLiveVelocityTimer) {
    makeReturningView();
    const auto idle = machine.runLoop.pendingCount();
    view->setHingeCreak(true);
    view->setHingeCreak(false);
    view->setHingeCreak(true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
}

TEST_F(ContentViewSwitchesTest, CreakOnTwiceLeavesTheEarlierTimerFiringEvenAfterOff) {
    makeReturningView().enterSufferingMode();
    const auto idle = machine.runLoop.pendingCount();
    view->setHingeCreak(true);
    view->setHingeCreak(true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 2);
    view->setHingeCreak(false);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
    machine.workspace.post("NSWorkspaceScreensDidWakeNotification");
    machine.runLoop.advance(0.1);
    EXPECT_TRUE(view->audioManager().isPlaying()) << "the first timer still fires";
}

// The other switches.

TEST_F(ContentViewSwitchesTest, TheOtherSwitchesStartAndStopTheirEffectAndShowItsOwnFlag) {
    makeReturningView();
    for (const auto& [label, name] : {std::pair{"Keyboard", "keyboard"},
                                      {"Thermals", "fan"},
                                      {"Stability", "bsod"},
                                      {"Performance", "freeze"}}) {
        calls.clear();
        const ToggleRow toggle = row(label);
        toggle.setOn(true);
        EXPECT_TRUE(toggle.isOn->get());
        toggle.setOn(false);
        EXPECT_FALSE(toggle.isOn->get());
        EXPECT_THAT(calls, ElementsAre(std::string(name) + " start", std::string(name) + " stop"));
    }
}

TEST_F(ContentViewSwitchesTest, ASwitchStaysOffWhenItsEffectCannotRun) {
    makeReturningView();
    keyboard->canStart = false;
    row("Keyboard").setOn(true);
    EXPECT_FALSE(row("Keyboard").isOn->get());
}

TEST_F(ContentViewSwitchesTest, TheKeyboardRowSaysWhyItStaysOff) {
    makeReturningView();
    EXPECT_EQ(row("Keyboard").hint->get(), "");
    keyboard->canStart = false;
    keyboard->whatKeepsItFromBeingNoticed = "No permission";
    row("Keyboard").setOn(true);
    EXPECT_EQ(row("Keyboard").hint->get(), "No permission");
    row("Keyboard").setOn(false);
    EXPECT_EQ(row("Keyboard").hint->get(), "");
}

TEST_F(ContentViewSwitchesTest, TheHintDisappearsWhenTheKeyboardStartsLater) {
    makeReturningView();
    keyboard->canStart = false;
    keyboard->whatKeepsItFromBeingNoticed = "No permission";
    row("Keyboard").setOn(true);
    keyboard->canStart = true;
    keyboard->start();
    EXPECT_EQ(row("Keyboard").hint->get(), "");
}

TEST_F(ContentViewSwitchesTest, ThereIsNoHintIfTheKeyboardCannotStartForAnotherReason) {
    makeReturningView();
    machine.accessibility.trusted = false;
    keyboard->canStart = false;
    row("Keyboard").setOn(true);
    EXPECT_EQ(row("Keyboard").hint->get(), "");
}

TEST_F(ContentViewSwitchesTest, TheAnswerToAPromptChangesTheKeyboardsHintAndNoOther) {
    makeReturningView();
    keyboard->canStart = false;
    row("Keyboard").setOn(true);
    keyboard->whatKeepsItFromBeingNoticed = "Refused";
    bsod->whatKeepsItFromBeingNoticed = "No screen here";
    machine.accessibility.setObstacle("Refused");
    EXPECT_EQ(row("Keyboard").hint->get(), "Refused");
    EXPECT_EQ(row("Stability").hint->get(), "");
    keyboard->whatKeepsItFromBeingNoticed = "";
    machine.accessibility.setObstacle("");
    EXPECT_EQ(row("Keyboard").hint->get(), "");
}

TEST_F(ContentViewSwitchesTest, ActiveEffectThatCannotBeNoticedSaysWhy) {
    makeReturningView();
    bsod->whatKeepsItFromBeingNoticed = "No screen here";
    row("Stability").setOn(true);
    EXPECT_TRUE(row("Stability").isOn->get());
    EXPECT_EQ(row("Stability").hint->get(), "No screen here");
    row("Stability").setOn(false);
    EXPECT_EQ(row("Stability").hint->get(), "");
}

TEST_F(ContentViewSwitchesTest, RowsOfTheListedEffectsCanHaveAHint) {
    makeReturningView();
    std::vector<bool> hints;
    for (const ToggleRow& each : view->toggleRows())
        hints.push_back(each.hint != nullptr);
    EXPECT_THAT(hints, ElementsAre(false, true, true, true, true, false));
}

TEST_F(ContentViewSwitchesTest, TheStopButtonClearsTheHint) {
    makeReturningView();
    keyboard->canStart = false;
    keyboard->whatKeepsItFromBeingNoticed = "No permission";
    row("Keyboard").setOn(true);
    EXPECT_EQ(row("Keyboard").hint->get(), "No permission");
    view->leaveSufferingMode();
    EXPECT_EQ(row("Keyboard").hint->get(), "");
}

TEST_F(ContentViewSwitchesTest, TheFreezeSwitchWrittenTrueWhileActiveOnlyCallsStart) {
    makeReturningView();
    row("Performance").setOn(true);
    int notices = 0;
    const auto subscription = row("Performance").isOn->observe([&] { ++notices; });
    row("Performance").setOn(true);
    EXPECT_THAT(calls, ElementsAre("freeze start", "freeze start"));
    EXPECT_EQ(notices, 0);
}

TEST_F(ContentViewSwitchesTest, TheStartupSwitchIsTheStartupExperiencesOwnFlag) {
    makeReturningView();
    row("Startup").setOn(false);
    EXPECT_FALSE(startup.startupSoundEnabled());
    row("Startup").setOn(true);
    EXPECT_TRUE(startup.startupSoundEnabled());
}

} // namespace
} // namespace quorvane
