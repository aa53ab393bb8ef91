#include "tests/app/ContentViewFixture.h"

#include <algorithm>

#include "tests/support/ExchangedPlatform.h"
#include "tests/support/WatchedRunLoop.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using Screen = ContentView::Screen;

using ContentViewStoppingTest = ContentViewFixture;

TEST_F(ContentViewStoppingTest,
       the_stop_button_stops_everything_in_its_order_and_shows_the_warning) {
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
    EXPECT_THAT(order,
                ElementsAre("sufferingMode", "screen", "audioEnabled", "creak", "keyboard stop",
                            "fan stop", "bsod stop", "freeze stop", "startup"));
    EXPECT_EQ(view->screen(), Screen::Warning);
}

TEST_F(ContentViewStoppingTest, the_stop_button_with_every_effect_off_still_stops_all_of_them) {
    makeReturningView().enterSufferingMode();
    view->leaveSufferingMode();
    EXPECT_THAT(calls, ElementsAre("keyboard stop", "fan stop", "bsod stop", "freeze stop"));
    EXPECT_EQ(machine.audio.node(0).calls().back(), "stop");
    EXPECT_EQ(view->screen(), Screen::Warning);
}

TEST_F(ContentViewStoppingTest, the_velocity_feed_has_ended_before_the_creak_is_stopped) {
    WatchedRunLoop runLoop(machine.runLoop);
    machine.userDefaults.setBool("hardwareChecked", true);
    ContentView watched(exchange(machine.platform(), {.runLoop = &runLoop}), &startup, {});
    watched.onAppear();
    watched.setHingeCreak(true);
    const auto& node = machine.audio.node(0).calls();
    const auto stops = [&] { return std::count(node.begin(), node.end(), "stop"); };
    std::vector<std::pair<bool, long>> enabledAndStops;
    runLoop.onInvalidate = [&] { enabledAndStops.emplace_back(watched.audioEnabled(), stops()); };
    watched.stopAudio();
    EXPECT_EQ(stops(), 1);
    watched.setHingeCreak(true);
    watched.setHingeCreak(false);
    EXPECT_EQ(stops(), 2);
    EXPECT_THAT(enabledAndStops, ElementsAre(std::pair(false, 0L), std::pair(false, 1L)));
}

TEST_F(ContentViewStoppingTest, only_the_stop_button_animates_the_way_back) {
    makeReturningView().enterSufferingMode();
    view->onDisappear();
    EXPECT_EQ(view->screen(), Screen::Warning);
    EXPECT_EQ(view->screenAnimation().curve, Animation::Curve::None);
}

TEST_F(ContentViewStoppingTest, on_first_entry_only_startup_is_on_and_on_the_second_nothing) {
    makeReturningView().enterSufferingMode();
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, true));
    view->leaveSufferingMode();
    view->enterSufferingMode();
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, false));
}

TEST_F(ContentViewStoppingTest, the_stop_button_turns_every_switch_off) {
    makeReturningView().enterSufferingMode();
    for (const ToggleRow& each : view->toggleRows())
        each.setOn(true);
    EXPECT_THAT(switches(), ElementsAre(true, true, true, true, true, true));
    view->leaveSufferingMode();
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, false));
}

TEST_F(ContentViewStoppingTest, a_startup_sound_that_is_off_already_is_left_without_a_notice) {
    makeReturningView();
    startup.startupSoundEnabled() = false;
    int notices = 0;
    const auto subscription = startup.startupSoundEnabled().observe([&] { ++notices; });
    view->stopAudio();
    EXPECT_EQ(notices, 0);
}

TEST_F(ContentViewStoppingTest,
       the_stop_button_leaves_the_sensor_running_and_disappearing_ends_it) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    view->leaveSufferingMode();
    EXPECT_TRUE(view->sensor().isRunning());
    view->onDisappear();
    EXPECT_FALSE(view->sensor().isRunning());
}

TEST_F(ContentViewStoppingTest, disappearing_stops_everything_and_then_the_sensor) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    std::vector<std::string> order;
    const auto enabled = view->audioEnabled().observe([&] { order.emplace_back("audioEnabled"); });
    const auto running = view->sensor().isRunning().observe([&] { order.emplace_back("sensor"); });
    view->onDisappear();
    EXPECT_THAT(order, ElementsAre("audioEnabled", "sensor"));
    EXPECT_THAT(calls, ElementsAre("keyboard stop", "fan stop", "bsod stop", "freeze stop"));
}

TEST_F(ContentViewStoppingTest, its_destruction_leaves_only_particle_timers_that_do_nothing) {
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
