#include "platform/simulated/LiveMachine.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

// Global, because the callback has no context argument.
std::vector<std::pair<TapEventType, std::int64_t>> heardKeys;

const TapEvent& hear(const TapEvent& event) {
    heardKeys.emplace_back(event.type, event.keyboardAutorepeat);
    return event;
}

/// The "real" machine is simulated too, so that its time is virtual.
class LiveMachineTest : public testing::Test {
protected:
    void load(std::string_view text) {
        m_live.emplace(std::get<Scenario>(parseScenario(text)), m_real.platform());
    }

    std::vector<std::shared_ptr<HIDDevice>> devices(const HIDMatching& matching) {
        const auto manager = m_live->platform().hid.createManager();
        manager->setDeviceMatching(matching);
        manager->scheduleWithRunLoop();
        return manager->open() == hidSuccess ? manager->copyDevices().value()
                                             : std::vector<std::shared_ptr<HIDDevice>>{};
    }

    static int angleOf(HIDDevice& device) {
        std::array<std::uint8_t, 3> report{};
        std::size_t length = report.size();
        EXPECT_EQ(device.open(), hidSuccess);
        EXPECT_EQ(device.getReport(HIDReportType::Feature, 1, report, length), hidSuccess);
        return report[1] | report[2] << 8;
    }

    SimulatedMachine m_real;
    std::optional<LiveMachine> m_live;
};

TEST_F(LiveMachineTest, WhatTheScenarioDescribesIsSimulatedAndTheRestIsReal) {
    load("{}");
    const Platform platform = m_live->platform();
    EXPECT_NE(&platform.hid, &m_real.hid);
    EXPECT_NE(&platform.workspace, &m_real.workspace);
    EXPECT_NE(&platform.eventTaps, &m_real.eventTaps);
    EXPECT_NE(&platform.system, &m_real.system);
    EXPECT_NE(&platform.application, &m_real.application);
    EXPECT_EQ(&platform.runLoop, &m_real.runLoop);
    EXPECT_EQ(&platform.defaultCenter, &m_real.defaultCenter);
    EXPECT_EQ(&platform.audio, &m_real.audio);
    EXPECT_EQ(&platform.haptics, &m_real.haptics);
    EXPECT_EQ(&platform.screens, &m_real.screens);
    EXPECT_EQ(&platform.bundle, &m_real.bundle);
    EXPECT_EQ(&platform.random, &m_real.random);
    EXPECT_EQ(&platform.console, &m_real.console);
}

TEST_F(LiveMachineTest, ControlsArePressedByName) {
    load(R"({"events": [{"at": 3, "press": "OK"}]})");
    std::string pressed;
    m_live->start(
        {.press = [&](std::string_view control) { pressed = control; }, .key = {}, .quit = {}});
    m_real.runLoop.advance(3);
    EXPECT_EQ(pressed, "OK");
}

TEST_F(LiveMachineTest, TheLoginItemIsTheScenariosAndTheFocusIsTheDesktops) {
    m_real.application.loginItem = LoginItemStatus::Enabled;
    load("{}");
    const auto& application = m_live->platform().application;
    EXPECT_EQ(application.loginItemStatus(), LoginItemStatus::NotRegistered);
    EXPECT_TRUE(application.isActive());
    m_real.application.active = false;
    EXPECT_FALSE(application.isActive());
    load(R"({"loginItem": true})");
    EXPECT_EQ(m_live->platform().application.loginItemStatus(), LoginItemStatus::Enabled);
}

TEST_F(LiveMachineTest, SettingsAreTheUsersUnlessTheScenarioHasItsOwn) {
    load("{}");
    m_live->platform().userDefaults.setBool("mine", true);
    EXPECT_TRUE(m_real.userDefaults.boolForKey("mine"));
    load(R"({"defaults": {"yes": true, "no": false}})");
    auto& own = m_live->platform().userDefaults;
    EXPECT_TRUE(own.boolForKey("yes"));
    EXPECT_FALSE(own.boolForKey("no"));
    EXPECT_FALSE(own.boolForKey("mine"));
    own.setBool("new", true);
    EXPECT_FALSE(m_real.userDefaults.boolForKey("new"));
}

TEST_F(LiveMachineTest, TheModelIsTheScenarios) {
    m_real.system.model = "real";
    m_real.accessibility.trusted = true;
    load(R"({"model": "scenario"})");
    EXPECT_EQ(m_live->platform().system.modelName(), "scenario");
    EXPECT_FALSE(m_live->platform().accessibility.isProcessTrusted());
}

TEST_F(LiveMachineTest, SleepAndWakeAreSimulated) {
    load(R"({"events": [{"at": 1, "screens": "sleep"}, {"at": 2, "screens": "wake"},
                        {"at": 3, "machine": "wake"}]})");
    std::vector<std::string> heard;
    for (const std::string_view name :
         {WorkspaceNotification::screensDidSleep, WorkspaceNotification::screensDidWake,
          WorkspaceNotification::didWake})
        m_live->platform().workspace.addObserver(name,
                                                 [&heard, name] { heard.emplace_back(name); });
    m_live->start({});
    m_real.runLoop.advance(3);
    EXPECT_THAT(heard, ElementsAre("NSWorkspaceScreensDidSleepNotification",
                                   "NSWorkspaceScreensDidWakeNotification",
                                   "NSWorkspaceDidWakeNotification"));
}

TEST_F(LiveMachineTest, ItsKeysReachItsTaps) {
    load(R"({"trusted": true,
             "events": [{"at": 1, "key": "down"}, {"at": 1, "key": "repeat"}, {"at": 1, "key": "up"},
                        {"at": 1, "key": "flags"}]})");
    heardKeys.clear();
    const auto tap =
        m_live->platform().eventTaps.createTap(TapLocation::Session, TapPlacement::HeadInsert,
                                               TapOptions::ListenOnly, ~std::uint64_t{0}, &hear);
    const auto source = tap->createRunLoopSource(0);
    source->addToRunLoop();
    tap->enable(true);
    m_live->start({});
    m_real.runLoop.advance(1);
    EXPECT_THAT(heardKeys,
                ElementsAre(std::pair(TapEventType::KeyDown, 0),
                            std::pair(TapEventType::KeyDown, 1), std::pair(TapEventType::KeyUp, 0),
                            std::pair(TapEventType::FlagsChanged, 0)));
}

TEST_F(LiveMachineTest, ItsTimeStartsAtItsCreation) {
    m_real.runLoop.advance(10);
    load(R"({"hid": [{"product": "0x8104", "lid": [[0, 100], [2, 140]], "unplugAt": 3}],
             "events": [{"at": 1, "quit": true}]})");
    int quits = 0;
    const auto quit = [&] { ++quits; };
    const auto found = devices({.vendorID = 0x05AC, .productID = 0x8104});
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(angleOf(*found[0]), 100);
    m_real.runLoop.advance(0.5);
    m_live->start({.press = {}, .key = {}, .quit = quit});
    m_real.runLoop.advance(0.49);
    EXPECT_EQ(quits, 0);
    m_real.runLoop.advance(0.01);
    EXPECT_EQ(quits, 1);
    EXPECT_EQ(angleOf(*found[0]), 120);
    m_real.runLoop.advance(2);
    EXPECT_NE(found[0]->open(), hidSuccess);
}

TEST_F(LiveMachineTest, ADeviceHasTheScenariosProperties) {
    load(R"({"hid": [{"vendor": "0x046d", "product": 7, "lid": [[0, 90]]},
                     {"product": "0x8104", "lid": [[0, 90]], "refusesOpen": true}]})");
    EXPECT_THAT(devices({.vendorID = 0x046D, .productID = 7}), SizeIs(1));
    const auto refusing = devices({.vendorID = 0x05AC, .productID = {}});
    ASSERT_THAT(refusing, SizeIs(1));
    EXPECT_NE(refusing[0]->open(), hidSuccess);
    load(R"({"hidManagerRefusesOpen": true})");
    EXPECT_NE(m_live->platform().hid.createManager()->open(), hidSuccess);
}

} // namespace
} // namespace quorvane
