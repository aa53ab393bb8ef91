#include "tests/sensing/LidAngleSensorFixture.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/ExchangedPlatform.h"

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

TEST_F(LidAngleSensorRepeatedProbeTest,
       ARepeatedProbeThatFindsNothingLeavesTheDeviceToARunningPoll) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(0);
    sensor->probeSensor();
    ASSERT_TRUE(sensor->usingSleepWake());
    lid->setAngle(70);
    advanceOnePoll();
    EXPECT_EQ(sensor->angle(), 70);
}

/// Notes at each line how many managers have been released.
class ReleasesAtLines final : public Console {
public:
    explicit ReleasesAtLines(const SimulatedHID& hid) : m_hid(hid) {}

    void print(std::string_view /*line*/) override {
        releases.push_back(std::count(m_hid.calls().begin(), m_hid.calls().end(), "release"));
    }

    std::vector<std::ptrdiff_t> releases;

private:
    const SimulatedHID& m_hid;
};

struct FoundProduct {
    int productID;
    /// Managers that found nothing before.
    std::ptrdiff_t vain;
};

class FoundProductTest : public testing::TestWithParam<FoundProduct> {};

TEST_P(FoundProductTest, IsPrintedBeforeItReplacesAnEarlierOne) {
    SimulatedMachine machine;
    ReleasesAtLines console(machine.hid);
    const auto sensor = LidAngleSensor::create(exchange(machine.platform(), {.console = &console}));
    machine.hid.addDevice(GetParam().productID)->setAngle(100);
    sensor->probeSensor();
    machine.hid.forgetCalls();
    sensor->probeSensor();
    EXPECT_THAT(console.releases, ElementsAre(GetParam().vain, GetParam().vain));
    EXPECT_EQ(machine.hid.calls().back(), "release") << "the earlier one, after the line";
}

INSTANTIATE_TEST_SUITE_P(Products, FoundProductTest,
                         testing::Values(FoundProduct{0x8104, 0}, FoundProduct{0x8262, 4},
                                         FoundProduct{0x0ABC, 5}),
                         [](const auto& found) { return std::to_string(found.param.productID); });

} // namespace
} // namespace quorvane
