#include "platform/simulated/LiveMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

/// A live machine over another simulated one, which plays the real part.
class LiveMachineTest : public testing::Test {
protected:
    LiveMachine& make(std::string_view text) {
        live.emplace(std::get<Scenario>(parseScenario(text)), real.platform());
        return *live;
    }

    SimulatedMachine real;
    std::optional<LiveMachine> live;
};

TEST_F(LiveMachineTest, what_the_scenario_describes_is_simulated_and_the_rest_is_real) {
    const Platform platform = make("{}").platform();
    EXPECT_NE(&platform.hid, &real.hid);
    EXPECT_NE(&platform.workspace, &real.workspace);
    EXPECT_NE(&platform.eventTaps, &real.eventTaps);
    EXPECT_NE(&platform.system, &real.system);
    EXPECT_NE(&platform.application, &real.application);
    EXPECT_EQ(&platform.runLoop, &real.runLoop);
    EXPECT_EQ(&platform.defaultCenter, &real.defaultCenter);
    EXPECT_EQ(&platform.audio, &real.audio);
    EXPECT_EQ(&platform.haptics, &real.haptics);
    EXPECT_EQ(&platform.screens, &real.screens);
    EXPECT_EQ(&platform.bundle, &real.bundle);
    EXPECT_EQ(&platform.random, &real.random);
    EXPECT_EQ(&platform.console, &real.console);
}

TEST_F(LiveMachineTest, settings_are_the_scenarios_own_only_if_it_has_some) {
    EXPECT_EQ(&make("{}").platform().userDefaults, &real.userDefaults);
    real.userDefaults.setBool("hardwareChecked", true);
    UserDefaults& own =
        make(R"({"defaults": {"hardwareChecked": false, "other": true}})").platform().userDefaults;
    EXPECT_FALSE(own.boolForKey("hardwareChecked"));
    EXPECT_TRUE(own.boolForKey("other"));
    own.setBool("other", false);
    EXPECT_FALSE(real.userDefaults.hasKey("other"));
    EXPECT_FALSE(make(R"({"defaults": {}})").platform().userDefaults.boolForKey("hardwareChecked"));
}

TEST_F(LiveMachineTest, the_login_item_is_the_scenarios_and_being_in_front_is_real) {
    real.application.loginItem = LoginItemStatus::Enabled;
    EXPECT_EQ(make("{}").platform().application.loginItemStatus(), LoginItemStatus::NotRegistered);
    EXPECT_EQ(make(R"({"loginItem": true})").platform().application.loginItemStatus(),
              LoginItemStatus::Enabled);
    real.application.active = false;
    EXPECT_FALSE(live->platform().application.isActive());
    real.application.active = true;
    EXPECT_TRUE(live->platform().application.isActive());
}

TEST_F(LiveMachineTest, furnishes_the_machine_and_lets_its_events_reach_everybody) {
    make(R"({"model": "MacBookAir10,1", "trusted": true,
             "hid": [{"product": "0x8104", "lid": [[0, 90]]}],
             "events": [{"at": 1, "key": "down"}, {"at": 1, "key": "up"},
                        {"at": 2, "screens": "wake"}, {"at": 3, "press": "OK"}]})");
    const Platform platform = live->platform();
    EXPECT_EQ(platform.system.modelName(), "MacBookAir10,1");
    EXPECT_TRUE(platform.system.isProcessTrusted());
    static int keys = 0;
    keys = 0;
    const auto tap = platform.eventTaps.createTap(
        TapLocation::Session, TapPlacement::HeadInsert, TapOptions::ListenOnly,
        tapEventMask(TapEventType::KeyDown), [](const TapEvent& event) -> const TapEvent& {
            ++keys;
            return event;
        });
    const auto source = tap->createRunLoopSource(0);
    source->addToRunLoop();
    tap->enable(true);
    int wakes = 0;
    platform.workspace.addObserver("NSWorkspaceScreensDidWakeNotification", [&] { ++wakes; });
    std::string pressed;
    live->start({.press = [&](std::string_view control) { pressed = control; },
                 .key = [](const TapEvent&) { ADD_FAILURE() << "its taps get the keys"; },
                 .quit = {}});
    real.runLoop.advance(3);
    EXPECT_EQ(keys, 1);
    EXPECT_EQ(wakes, 1);
    EXPECT_EQ(pressed, "OK");
}

} // namespace
} // namespace quorvane
