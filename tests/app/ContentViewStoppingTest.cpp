#include "tests/app/ContentViewFixture.h"

#include <algorithm>

#include "tests/support/ExchangedPlatform.h"
#include "tests/support/WatchedRunLoop.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using Screen = ContentView::Screen;

using ContentViewStoppingTest = ContentViewFixture;

TEST_F(ContentViewStoppingTest, TheStopButtonStopsEverythingInItsOrderAndThenShowsTheWarning) {
    makeReturningView().enterSufferingMode();
    for (const ToggleRow& each : view->toggleRows())
        each.setOn(true);
    machine.workspace.post("NSWorkspaceScreensDidWakeNotification");
    machine.runLoop.advance(0.1);
    ASSERT_TRUE(view->audioManager().isPlaying());
    calls.clear();
    std::vector<std::string> order;
    const auto note = [&](std::string what) {
        return [&order, this, what = std::move(what)] {
            order.insert(order.end(), calls.begin(), calls.end());
            calls.clear();
            order.push_back(what);
        };
    };
    const auto suffering = view->sufferingMode().observe(note("sufferingMode"));
    const auto screen = view->screen().observe(note("screen"));
    const auto enabled = view->audioEnabled().observe(note("audioEnabled"));
    const auto playing = view->audioManager().isPlaying().observe(note("creak"));
    const auto sound = startup.startupSoundEnabled().observe(note("startup"));
    view->leaveSufferingMode();
    EXPECT_THAT(order, ElementsAre("sufferingMode", "audioEnabled", "creak", "keyboard stop",
                                   "fan stop", "bsod stop", "freeze stop", "startup", "screen"));
    EXPECT_EQ(view->screen(), Screen::Warning);
}

TEST_F(ContentViewStoppingTest, TheStopButtonWithEveryEffectOffStillStopsAllOfThem) {
    makeReturningView().enterSufferingMode();
    view->leaveSufferingMode();
    EXPECT_THAT(calls, ElementsAre("keyboard stop", "fan stop", "bsod stop", "freeze stop"));
    EXPECT_EQ(machine.audio.node(0).calls().back(), "stop");
    EXPECT_EQ(view->screen(), Screen::Warning);
}

TEST_F(ContentViewStoppingTest, TheVelocityFeedHasEndedBeforeTheCreakIsStopped) {
    WatchedRunLoop runLoop(machine.runLoop);
    machine.userDefaults.setBool("hardwareChecked", true);
    ContentView watched(exchange(machine.platform(), {.runLoop = &runLoop}), startup, {});
    watched.onAppear();
    watched.setHingeCreak(true);
    const auto& node = machine.audio.node(0).calls();
    const auto stops = [&] { return std::count(node.begin(), node.end(), "stop"); };
    std::vector<std::pair<bool, long>> enabledAndStops;
    runLoop.onInvalidate = [&] { enabledAndStops.emplace_back(watched.audioEnabled(), stops()); };
    watched.leaveSufferingMode();
    EXPECT_EQ(stops(), 1);
    watched.setHingeCreak(true);
    watched.setHingeCreak(false);
    EXPECT_EQ(stops(), 2);
    EXPECT_THAT(enabledAndStops, ElementsAre(std::pair(false, 0L), std::pair(false, 1L)));
}

TEST_F(ContentViewStoppingTest, OnlyTheStopButtonAnimatesTheChangeOfScreen) {
    makeReturningView().enterSufferingMode();
    view->onDisappear();
    EXPECT_EQ(view->screen(), Screen::Warning);
    EXPECT_EQ(view->screenAnimation().curve, Animation::Curve::None);
}

TEST_F(ContentViewStoppingTest, OnFirstEntryOnlyStartupIsOnAndOnTheSecondNothing) {
    makeReturningView().enterSufferingMode();
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, true));
    view->leaveSufferingMode();
    view->enterSufferingMode();
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, false));
}

TEST_F(ContentViewStoppingTest, TheStopButtonTurnsEverySwitchOff) {
    makeReturningView().enterSufferingMode();
    for (const ToggleRow& each : view->toggleRows())
        each.setOn(true);
    EXPECT_THAT(switches(), ElementsAre(true, true, true, true, true, true));
    view->leaveSufferingMode();
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, false));
}

TEST_F(ContentViewStoppingTest, AStartupSoundThatIsOffAlreadyIsNotNotified) {
    makeReturningView();
    startup.startupSoundEnabled() = false;
    int notices = 0;
    const auto subscription = startup.startupSoundEnabled().observe([&] { ++notices; });
    view->leaveSufferingMode();
    EXPECT_EQ(notices, 0);
}

TEST_F(ContentViewStoppingTest, TheStopButtonLeavesTheSensorRunningAndDisappearingEndsIt) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    view->leaveSufferingMode();
    EXPECT_TRUE(view->sensor().isRunning());
    view->onDisappear();
    EXPECT_FALSE(view->sensor().isRunning());
}

TEST_F(ContentViewStoppingTest, DisappearingStopsEverythingThenTheSensorAndThenChangesTheScreen) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    std::vector<std::string> order;
    const auto enabled = view->audioEnabled().observe([&] { order.emplace_back("audioEnabled"); });
    const auto running = view->sensor().isRunning().observe([&] { order.emplace_back("sensor"); });
    const auto screen = view->screen().observe([&] { order.emplace_back("screen"); });
    view->onDisappear();
    EXPECT_THAT(order, ElementsAre("audioEnabled", "sensor", "screen"));
    EXPECT_THAT(calls, ElementsAre("keyboard stop", "fan stop", "bsod stop", "freeze stop"));
}

TEST_F(ContentViewStoppingTest, ItsDestructionLeavesOnlyParticleTimersThatDoNothing) {
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    view->runHardwareCheck();
    view.reset();
    machine.runLoop.advance(5);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    EXPECT_EQ(machine.defaultCenter.observerCount(), 0U);
}

} // namespace
} // namespace quorvane
