#include "tests/sensing/LidAngleSensorFixture.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace quorvane {
namespace {

using testing::ElementsAre;

constexpr auto fallbackLine =
    "⚠️ [SENSOR] No HID lid sensor found — using sleep/wake fallback";

using LidAngleSensorDiscoveryTest = LidAngleSensorFixture;

TEST_F(LidAngleSensorDiscoveryTest, FindsTheFirstKnownProductAndPrintsIt) {
    probeLidAt(112);
    EXPECT_TRUE(sensor->sensorFound());
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=112°"));
}

TEST_F(LidAngleSensorDiscoveryTest, CallsTheManagerInOrderAndKeepsItOpen) {
    probeLidAt(112);
    EXPECT_THAT(machine.hid.calls(),
                ElementsAre("create", "match 1452:33028", "schedule", "open", "copy"));
}

TEST_F(LidAngleSensorDiscoveryTest, TriesTheProductsInOrderAndThenEveryDeviceOfTheVendor) {
    sensor->probeSensor();
    std::vector<std::string> matches;
    std::copy_if(machine.hid.calls().begin(), machine.hid.calls().end(),
                 std::back_inserter(matches),
                 [](const std::string& call) { return call.starts_with("match"); });
    EXPECT_THAT(matches, ElementsAre("match 1452:33028", "match 1452:33026", "match 1452:33027",
                                     "match 1452:33029", "match 1452:33378", "match 1452"));
}

TEST_F(LidAngleSensorDiscoveryTest, ALaterProductIsFoundWhenTheEarlierOnesAreMissing) {
    machine.hid.addDevice(0x8262)->setAngle(90);
    sensor->probeSensor();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor! ProductID=0x8262, angle=90°"));
}

TEST_F(LidAngleSensorDiscoveryTest, AnUnknownProductIsFoundByTheScan) {
    machine.hid.addDevice(0x0ABC)->setAngle(45);
    sensor->probeSensor();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor via scan! ProductID=0xabc, angle=45°"));
    EXPECT_FALSE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorDiscoveryTest, TheScanPrintsAMissingProductIdAsZero) {
    machine.hid.addDevice(std::nullopt)->setAngle(45);
    sensor->probeSensor();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor via scan! ProductID=0x0, angle=45°"));
}

TEST_F(LidAngleSensorDiscoveryTest, ADeviceOfAnotherVendorIsNeverRead) {
    const auto other = machine.hid.addDevice(0x8104);
    other->vendorID = 0x046D;
    other->setAngle(100);
    sensor->probeSensor();
    EXPECT_EQ(other->readings(), 0);
    EXPECT_TRUE(sensor->usingSleepWake());
}

struct FirstAngle {
    unsigned degrees;
    bool accepted;
};

class FirstAngleTest : public LidAngleSensorFixture,
                       public testing::WithParamInterface<FirstAngle> {};

TEST_P(FirstAngleTest, DecidesWhetherTheDeviceIsTheSensor) {
    machine.hid.addDevice(0x8104)->setAngle(GetParam().degrees);
    sensor->probeSensor();
    EXPECT_EQ(!sensor->usingSleepWake(), GetParam().accepted);
    EXPECT_TRUE(sensor->sensorFound());
}

INSTANTIATE_TEST_SUITE_P(Angles, FirstAngleTest,
                         testing::Values(FirstAngle{0, false}, FirstAngle{1, true},
                                         FirstAngle{199, true}, FirstAngle{200, false},
                                         FirstAngle{0x0164, false}),
                         [](const auto& angle) { return std::to_string(angle.param.degrees); });

TEST_F(LidAngleSensorDiscoveryTest, AReportOfTwoBytesIsAFailedReadInDiscovery) {
    machine.hid.addDevice(0x8104)->setReport(SimulatedHIDDevice::Report{1, 100});
    sensor->probeSensor();
    EXPECT_TRUE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorDiscoveryTest, AReportLongerThanThreeBytesCounts) {
    machine.hid.addDevice(0x8104)->setReport(SimulatedHIDDevice::Report{1, 100, 0, 9, 9, 9, 9, 9});
    sensor->probeSensor();
    EXPECT_FALSE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorDiscoveryTest, TheNextDeviceIsTriedAfterOneThatDoesNotQualify) {
    const auto unopenable = machine.hid.addDevice(0x8104);
    unopenable->setAngle(50);
    unopenable->refusesOpen = true;
    const auto unreadable = machine.hid.addDevice(0x8104);
    unreadable->setReport(std::nullopt);
    const auto resting = machine.hid.addDevice(0x8104);
    resting->setAngle(0);
    machine.hid.addDevice(0x8104)->setAngle(77);
    machine.hid.addDevice(0x8104)->setAngle(78);
    sensor->probeSensor();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=77°"));
    EXPECT_EQ(unopenable->readings(), 0);
    EXPECT_TRUE(resting->isOpen()) << "a rejected device is left open";
}

TEST_F(LidAngleSensorDiscoveryTest, AManagerWhoseDevicesAllFailedIsClosedAndReleased) {
    machine.hid.addDevice(0x8104)->setAngle(0);
    sensor->probeSensor();
    const auto& calls = machine.hid.calls();
    ASSERT_GE(calls.size(), 7U);
    EXPECT_THAT(
        (std::vector(calls.begin(), calls.begin() + 7)),
        ElementsAre("create", "match 1452:33028", "schedule", "open", "copy", "close", "release"));
    EXPECT_THAT((std::vector(calls.end() - 2, calls.end())), ElementsAre("close", "release"));
}

TEST_F(LidAngleSensorDiscoveryTest, AManagerWithoutDevicesIsReleasedWithoutClosing) {
    machine.hid.copyGivesNoSet = true;
    sensor->probeSensor();
    EXPECT_THAT(machine.hid.calls(), testing::Not(testing::Contains("close")));
    EXPECT_TRUE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorDiscoveryTest, AManagerThatCannotBeOpenedIsReleasedWithoutClosing) {
    machine.hid.managerRefusesOpen = true;
    machine.hid.addDevice(0x8104)->setAngle(100);
    sensor->probeSensor();
    EXPECT_THAT(machine.hid.calls(), testing::Not(testing::AnyOf(testing::Contains("close"),
                                                                 testing::Contains("copy"))));
    EXPECT_THAT(machine.console.lines, ElementsAre(fallbackLine));
}

TEST_F(LidAngleSensorDiscoveryTest, WithoutASensorBothFlagsAreSetAndOneLineIsPrinted) {
    sensor->probeSensor();
    EXPECT_TRUE(sensor->sensorFound());
    EXPECT_TRUE(sensor->usingSleepWake());
    EXPECT_THAT(machine.console.lines, ElementsAre(fallbackLine));
}

TEST_F(LidAngleSensorDiscoveryTest, AManagerWithAnEmptySetIsReleasedWithoutClosing) {
    sensor->probeSensor();
    EXPECT_EQ(callCount("close"), 0);
    EXPECT_EQ(callCount("release"), 6);
}

TEST_F(LidAngleSensorDiscoveryTest, OnlyManagersWhoseSetWasExhaustedAreClosed) {
    machine.hid.addDevice(0x8102)->setAngle(0);
    sensor->probeSensor();
    EXPECT_EQ(callCount("close"), 2) << "that of the product and that of the scan";
    EXPECT_EQ(callCount("release"), 6);
}

TEST_F(LidAngleSensorDiscoveryTest, TheLineComesBeforeTheFlagsAndFoundBeforeFallback) {
    std::vector<std::string> order;
    const auto found = sensor->sensorFound().observe([&] {
        order.push_back(machine.console.lines.empty() ? "silent" : machine.console.lines.back());
        order.emplace_back("found");
    });
    const auto fallback = sensor->usingSleepWake().observe([&] { order.emplace_back("fallback"); });
    sensor->probeSensor();
    EXPECT_THAT(order, ElementsAre(fallbackLine, "found", "fallback"));
}

TEST_F(LidAngleSensorDiscoveryTest, TheScanTakesTheFirstDeviceThatQualifies) {
    machine.hid.addDevice(0x0001)->setAngle(0);
    machine.hid.addDevice(0x0002)->setAngle(60);
    machine.hid.addDevice(0x0003)->setAngle(61);
    sensor->probeSensor();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor via scan! ProductID=0x2, angle=60°"));
}

} // namespace
} // namespace quorvane
