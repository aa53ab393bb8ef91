#include "tests/sensing/LidAngleSensorFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;

using LidAngleSensorRepeatedProbeTest = LidAngleSensorFixture;

TEST_F(LidAngleSensorRepeatedProbeTest, ARepeatedProbeThatFindsADeviceReplacesTheEarlierManager) {
    probeLidAt(100);
    machine.hid.forgetCalls();
    lid->unplug();
    const auto second = machine.hid.addDevice(0x8104);
    second->setAngle(80);
    sensor->probeSensor();
    EXPECT_THAT(machine.hid.calls(),
                ElementsAre("create", "match 1452:33028", "schedule", "open", "copy", "release"))
        << "the earlier manager is released, and neither is closed";
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=100°",
                            "✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=80°"));
    sensor->start();
    EXPECT_EQ(sensor->angle(), 80);
}

TEST_F(LidAngleSensorRepeatedProbeTest, ARepeatedProbeDoesNotNotifyWithoutAChange) {
    probeLidAt(100);
    int notices = 0;
    const auto found = sensor->sensorFound().observe([&] { ++notices; });
    const auto fallback = sensor->usingSleepWake().observe([&] { ++notices; });
    sensor->probeSensor();
    EXPECT_EQ(notices, 0);
}

TEST_F(LidAngleSensorRepeatedProbeTest, ARepeatedProbeThatFindsADeviceLeavesTheFallback) {
    sensor->probeSensor();
    probeLidAt(100);
    EXPECT_FALSE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorRepeatedProbeTest, ARepeatedProbeThatFindsNothingMakesTheNextStartFallBack) {
    probeLidAt(100);
    machine.hid.forgetCalls();
    lid->setAngle(0);
    sensor->probeSensor();
    EXPECT_TRUE(sensor->usingSleepWake());
    EXPECT_EQ(callCount("release"), 6) << "the earlier manager is kept";
    sensor->start();
    EXPECT_EQ(machine.console.lines.back(), "📡 [SENSOR] Sleep/wake monitoring started");
}

} // namespace
} // namespace quorvane
