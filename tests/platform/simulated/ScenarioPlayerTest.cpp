#include "platform/simulated/ScenarioPlayer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"
#include "sensing/LidAngleSensor.h"

namespace quorvane {
namespace {

using testing::ElementsAre;

class ScenarioPlayerTest : public testing::Test {
protected:
    ScenarioPlayer& play(std::string_view text) {
        player.emplace(std::get<Scenario>(parseScenario(text)), machine.runLoop, machine.workspace,
                       machine.defaultCenter);
        player->setUpMachine(machine.hid, machine.accessibility, machine.system);
        return *player;
    }

    SimulatedMachine machine;
    std::optional<ScenarioPlayer> player;
};

TEST_F(ScenarioPlayerTest, SetsUpTheMachine) {
    play(R"({"model": "MacBookPro18,3", "trusted": true,
             "hid": [{"product": "0x8104", "lid": [[0, 100], [2, 140]]}]})");
    EXPECT_EQ(machine.system.model, "MacBookPro18,3");
    EXPECT_TRUE(machine.accessibility.trusted);
    const auto sensor = LidAngleSensor::create(machine.platform());
    sensor->probeSensor();
    sensor->start();
    machine.runLoop.advance(1);
    EXPECT_EQ(sensor->angle(), 120);
    EXPECT_NEAR(sensor->velocity(), 20, 5);
}

TEST_F(ScenarioPlayerTest, PlaysEventsAtTheirTimes) {
    std::vector<std::string> happened;
    machine.workspace.addObserver(WorkspaceNotification::screensDidSleep,
                                  [&] { happened.emplace_back("sleep"); });
    machine.defaultCenter.addObserver("hello", [&] { happened.emplace_back("hello"); });
    play(R"({"events": [{"at": 1, "press": "OK"}, {"at": 2, "screens": "sleep"},
                        {"at": 3, "post": "hello"}, {"at": 4, "key": "down"},
                        {"at": 5, "quit": true}]})")
        .start({.press = [&](std::string_view control) { happened.emplace_back(control); },
                .key = [&](const TapEvent&) { happened.emplace_back("key"); },
                .quit = [&] { happened.emplace_back("quit"); }});
    machine.runLoop.advance(0.999);
    EXPECT_TRUE(happened.empty());
    machine.runLoop.advance(1.001);
    EXPECT_THAT(happened, ElementsAre("OK", "sleep"));
    machine.runLoop.advance(3);
    EXPECT_THAT(happened, ElementsAre("OK", "sleep", "hello", "key", "quit"));
}

TEST_F(ScenarioPlayerTest, PlaysEventsOfAboutTheSameTimeInTheirOrder) {
    std::vector<std::string> happened;
    play(R"({"events": [{"at": 0, "press": "a"}, {"at": 0.00005, "press": "b"},
                        {"at": 0.00015, "press": "c"}]})")
        .start({.press = [&](std::string_view control) { happened.emplace_back(control); },
                .key = {},
                .quit = {}});
    machine.runLoop.advance(1);
    EXPECT_THAT(happened, ElementsAre("a", "b", "c"));
}

TEST_F(ScenarioPlayerTest, KeysHaveTheirTypes) {
    std::vector<std::pair<TapEventType, std::int64_t>> keys;
    play(R"({"events": [{"at": 1, "key": "down"}, {"at": 2, "key": "repeat"},
                        {"at": 3, "key": "up"}, {"at": 4, "key": "flags"}]})")
        .start({.press = {},
                .key =
                    [&](const TapEvent& event) {
                        keys.emplace_back(event.type, event.keyboardAutorepeat);
                    },
                .quit = {}});
    machine.runLoop.advance(4);
    EXPECT_THAT(keys,
                ElementsAre(std::pair(TapEventType::KeyDown, 0),
                            std::pair(TapEventType::KeyDown, 1), std::pair(TapEventType::KeyUp, 0),
                            std::pair(TapEventType::FlagsChanged, 0)));
}

TEST_F(ScenarioPlayerTest, ScreensAndMachinePostTheirOwnNotifications) {
    std::vector<std::string> happened;
    for (const char* name :
         {"NSWorkspaceScreensDidSleepNotification", "NSWorkspaceScreensDidWakeNotification",
          "NSWorkspaceDidWakeNotification"})
        machine.workspace.addObserver(name, [&happened, name] { happened.emplace_back(name); });
    play(R"({"events": [{"at": 1, "screens": "wake"}, {"at": 2, "machine": "wake"},
                        {"at": 3, "screens": "sleep"}]})")
        .start({});
    machine.runLoop.advance(3);
    EXPECT_THAT(happened, ElementsAre("NSWorkspaceScreensDidWakeNotification",
                                      "NSWorkspaceDidWakeNotification",
                                      "NSWorkspaceScreensDidSleepNotification"));
}

TEST_F(ScenarioPlayerTest, TimesCountFromItsCreationAndLateEventsHappenAtOnce) {
    machine.runLoop.advance(5);
    std::vector<double> pressed;
    ScenarioPlayer& late = play(R"({"events": [{"at": 1, "press": "a"}, {"at": 3, "press": "b"}],
                                    "hid": [{"product": "0x8104", "lid": [[0, 10], [4, 50]]}]})");
    machine.runLoop.advance(2);
    late.start(
        {.press = [&](std::string_view) { pressed.push_back(machine.runLoop.currentMediaTime()); },
         .key = {},
         .quit = {}});
    machine.runLoop.advance(2);
    ASSERT_EQ(pressed.size(), 2U);
    EXPECT_NEAR(pressed[0], 7, 0.001);
    EXPECT_NEAR(pressed[1], 8, 1e-6);
    const auto sensor = LidAngleSensor::create(machine.platform());
    sensor->probeSensor();
    EXPECT_EQ(machine.console.lines.back(),
              "✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=50°");
}

TEST_F(ScenarioPlayerTest, SetsUpFaults) {
    play(R"({"hidManagerRefusesOpen": true,
             "hid": [{"vendor": "0x046d", "product": 7, "refusesOpen": true}]})");
    EXPECT_TRUE(machine.hid.managerRefusesOpen);
    EXPECT_FALSE(machine.accessibility.trusted);
    machine.hid.managerRefusesOpen = false;
    const auto manager = machine.hid.createManager();
    manager->setDeviceMatching({.vendorID = 0x046D, .productID = 7});
    const auto devices = manager->copyDevices();
    ASSERT_TRUE(devices && devices->size() == 1);
    EXPECT_NE(devices->front()->open(), hidSuccess);
}

TEST_F(ScenarioPlayerTest, AnEventWithoutAHandlerIsIgnored) {
    play(R"({"events": [{"at": 0, "press": "OK"}, {"at": 0, "key": "up"}]})").start({});
    machine.runLoop.advance(1);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(ScenarioPlayerTest, UnplugsADeviceAtItsTime) {
    play(R"({"hid": [{"product": "0x8104", "lid": [[0, 100]], "unplugAt": 1}]})");
    const auto sensor = LidAngleSensor::create(machine.platform());
    machine.runLoop.advance(0.9);
    sensor->probeSensor();
    EXPECT_FALSE(sensor->usingSleepWake());
    machine.runLoop.advance(0.2);
    sensor->probeSensor();
    EXPECT_TRUE(sensor->usingSleepWake());
}

TEST_F(ScenarioPlayerTest, SingleReadingsCanHaveTheirOwnReports) {
    play(R"({"hid": [{"product": "0x8104", "lid": [[0, 100]], "readings": {"1": [1, 50]}}]})");
    const auto sensor = LidAngleSensor::create(machine.platform());
    sensor->probeSensor();
    EXPECT_EQ(machine.console.lines.back(),
              "✅ [SENSOR] Found lid sensor via scan! ProductID=0x8104, angle=100°")
        << "the first reading is short, so the product is passed over and the scan finds it";
}

TEST_F(ScenarioPlayerTest, ItsDestructionCancelsEventsToCome) {
    int quits = 0;
    play(R"({"events": [{"at": 1, "quit": true}]})").start({.press = {}, .key = {}, .quit = [&] {
                                                                ++quits;
                                                            }});
    player.reset();
    machine.runLoop.advance(2);
    EXPECT_EQ(quits, 0);
}

} // namespace
} // namespace quorvane
