#include "effects/keyboard/KeyboardCrackManager.h"
#include "platform/macos/MacAccessibility.h"
#include "platform/macos/MacEventTapService.h"
#include "platform/macos/MacHID.h"
#include "platform/simulated/SimulatedMachine.h"
#include "sensing/LidAngleSensor.h"
#include "tests/macos/FakeMachine.h"
#include "tests/support/ExchangedPlatform.h"

namespace quorvane {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// The logic in virtual time, on the macOS side's devices, taps and permissions.
class MacLogicTest : public testing::Test {
protected:
    MacLogicTest() {
        m_rest.audio.addFile("keyboard.mp3", {.sampleRate = 1000, .channels = 1},
                             std::vector<float>(200, 0.5F));
        m_rest.bundle.addResource("keyboard", "mp3", "keyboard.mp3");
        m_rest.runLoop.advance(10);
    }

    Platform platform() {
        return exchange(
            m_rest.platform(),
            {.hid = &m_hid, .eventTaps = &m_eventTaps, .accessibility = &m_accessibility});
    }

    std::shared_ptr<fakes::Device> plugIn(int productID, std::vector<std::uint8_t> report) {
        auto device = std::make_shared<fakes::Device>();
        device->integers = {{"VendorID", 1452}, {"ProductID", productID}};
        device->report = std::move(report);
        fakes::machine().devices.push_back(device);
        return device;
    }

    FakeMachine m_machine;
    std::vector<std::string>& m_calls = fakes::machine().calls;
    MacHID m_hid;
    MacEventTapService m_eventTaps;
    MacAccessibility m_accessibility;
    SimulatedMachine m_rest;
};

TEST_F(MacLogicTest, AfterTheSearchOnlyTheManagerAndTheDeviceAreHeld) {
    plugIn(0x8104, {1, 0, 0});
    plugIn(0x8102, {1, 112, 0});
    auto sensor = LidAngleSensor::create(platform());
    sensor->probeSensor();
    EXPECT_FALSE(sensor->usingSleepWake());
    EXPECT_THAT(m_rest.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor! ProductID=0x8102, angle=112°"));
    EXPECT_THAT(fakes::leftOver(), ElementsAre("IOHIDDevice", "IOHIDManager"));
    sensor.reset();
    EXPECT_THAT(fakes::leftOver(), IsEmpty());
}

TEST_F(MacLogicTest, AnotherProbeReleasesWhatTheFirstOneFound) {
    plugIn(0x8104, {1, 112, 0});
    const auto sensor = LidAngleSensor::create(platform());
    sensor->probeSensor();
    sensor->probeSensor();
    EXPECT_THAT(fakes::leftOver(), ElementsAre("IOHIDDevice", "IOHIDManager"));
}

TEST_F(MacLogicTest, AFailedSearchTriesEachProductAndThenTheVendorAndLeaksNothing) {
    plugIn(0x0342, {1, 0});
    const auto sensor = LidAngleSensor::create(platform());
    sensor->probeSensor();
    EXPECT_TRUE(sensor->usingSleepWake());
    EXPECT_THAT(fakes::leftOver(), IsEmpty());
    std::vector<std::string> searches;
    for (const std::string& call : m_calls)
        if (call.starts_with("IOHIDManagerSetDeviceMatching"))
            searches.push_back(call);
    std::vector<std::string> expected;
    for (const char* product : {"33028", "33026", "33027", "33029", "33378"})
        expected.push_back(
            std::string(R"(IOHIDManagerSetDeviceMatching({"VendorID": 1452, "ProductID": )") +
            product + "})");
    expected.emplace_back(R"(IOHIDManagerSetDeviceMatching({"VendorID": 1452}))");
    EXPECT_THAT(searches, ElementsAreArray(expected));
}

TEST_F(MacLogicTest, ThePollReadsTheLidAsItMoves) {
    const auto device = plugIn(0x8104, {1, 100, 0});
    const auto sensor = LidAngleSensor::create(platform());
    sensor->probeSensor();
    sensor->start();
    device->report = {1, 110, 0};
    m_rest.runLoop.advance(0.1);
    EXPECT_EQ(sensor->angle(), 110);
    EXPECT_GT(sensor->velocity(), 0);
    sensor->stop();
}

TEST_F(MacLogicTest, AKeyHeardByTheTapCracks) {
    fakes::machine().trusted = true;
    auto manager = KeyboardCrackManager::create(platform());
    manager->start();
    EXPECT_TRUE(manager->isActive());
    EXPECT_TRUE(fakes::deliver(10, 0));
    EXPECT_TRUE(fakes::deliver(10, 1));
    m_rest.runLoop.runMainQueue();
    EXPECT_EQ(m_rest.audio.timeline().size(), 1U);
    manager->stop();
    EXPECT_THAT(fakes::leftOver(), IsEmpty());
    EXPECT_THAT(m_calls, Contains("CGEventTapCreate(1, 0, 1, 1024, callback, null)").Times(1));
    EXPECT_EQ(fakes::openTaps(), 0);
}

TEST_F(MacLogicTest, WithoutTrustTheUserIsAskedOnceAndTheRetryMakesTheTap) {
    const auto manager = KeyboardCrackManager::create(platform());
    manager->start();
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(fakes::machine().prompts, 1);
    fakes::machine().trusted = true;
    m_rest.runLoop.advance(3);
    EXPECT_TRUE(manager->isActive());
    EXPECT_EQ(fakes::machine().prompts, 1);
    manager->stop();
}

} // namespace

} // namespace quorvane
