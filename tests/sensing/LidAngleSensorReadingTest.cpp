#include "tests/sensing/LidAngleSensorFixture.h"

#include <vector>

#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

using testing::Each;
using testing::SizeIs;

using LidAngleSensorReadingTest = LidAngleSensorFixture;
using Report = SimulatedHIDDevice::Report;

// A report that cannot be read or is too short.

class BadReportTest : public LidAngleSensorFixture,
                      public testing::WithParamInterface<std::optional<Report>> {};

TEST_P(BadReportTest, IsSkippedAndAngleVelocityAndHistoryStay) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(103);
    advanceOnePoll();
    ASSERT_NEAR(sensor->velocity(), 90, 1e-4);
    lid->setReport(GetParam());
    int notices = 0;
    const auto angle = sensor->angle().observe([&] { ++notices; });
    const auto velocity = sensor->velocity().observe([&] { ++notices; });
    advanceOnePoll();
    EXPECT_EQ(sensor->angle(), 103);
    EXPECT_NEAR(sensor->velocity(), 90, 1e-4);
    EXPECT_EQ(notices, 0);
    lid->setAngle(106);
    advanceOnePoll();
    EXPECT_NEAR(sensor->velocity(), 60, 1e-4) << "six degrees since the first sample, 0.1 s ago";
}

INSTANTIATE_TEST_SUITE_P(Reports, BadReportTest,
                         testing::Values(std::nullopt, Report{}, Report{1}, Report{1, 9}),
                         [](const auto& report) {
                             return report.param ? "of_" + std::to_string(report.param->size())
                                                 : std::string("failed");
                         });

TEST_F(LidAngleSensorReadingTest, AfterManyFailedReadingsItGoesOn) {
    pollMovingLid();
    const double before = sensor->velocity();
    lid->setReport(std::nullopt);
    machine.runLoop.advance(2);
    EXPECT_EQ(sensor->velocity(), before);
    EXPECT_EQ(sensor->angle(), 130);
    EXPECT_TRUE(sensor->isRunning());
    lid->setAngle(50);
    machine.runLoop.advance(0.3);
    EXPECT_EQ(sensor->angle(), 50);
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorReadingTest, ADeviceUnpluggedWhileTheLidMovesChangesNothing) {
    pollMovingLid();
    const double before = sensor->velocity();
    lid->unplug();
    machine.runLoop.advance(2);
    EXPECT_TRUE(sensor->isRunning());
    EXPECT_EQ(sensor->angle(), 130);
    EXPECT_EQ(sensor->velocity(), before);
}

// The calls that the device gets.

struct Call {
    HIDReportType type;
    int reportID;
    std::size_t room;
    std::size_t length;

    bool operator==(const Call&) const = default;
};

/// A lid at 100 degrees that records its calls.
class RecordingLid final : public HIDDevice {
public:
    HIDResult open() override { return hidSuccess; }

    HIDResult getReport(HIDReportType type, std::uint8_t reportID, std::span<std::uint8_t> buffer,
                        std::size_t& length) override {
        calls.push_back(
            {.type = type, .reportID = reportID, .room = buffer.size(), .length = length});
        buffer[0] = 1;
        buffer[1] = 100;
        buffer[2] = 0;
        length = 3;
        return hidSuccess;
    }

    [[nodiscard]] std::optional<int> integerProperty(std::string_view /*key*/) const override {
        return std::nullopt;
    }

    std::vector<Call> calls;
};

class RecordingHID final : public HIDService {
public:
    std::shared_ptr<HIDManager> createManager() override {
        class Manager final : public HIDManager {
        public:
            explicit Manager(std::shared_ptr<HIDDevice> lid) : m_lid(std::move(lid)) {}

            void setDeviceMatching(const HIDMatching& /*matching*/) override {}

            void scheduleWithRunLoop() override {}

            HIDResult open() override { return hidSuccess; }

            std::optional<std::vector<std::shared_ptr<HIDDevice>>> copyDevices() override {
                return std::vector{m_lid};
            }

            HIDResult close() override { return hidSuccess; }

        private:
            std::shared_ptr<HIDDevice> m_lid;
        };

        auto manager = std::make_shared<Manager>(lid);
        managers.push_back(manager);
        return manager;
    }

    std::shared_ptr<RecordingLid> lid = std::make_shared<RecordingLid>();
    std::vector<std::weak_ptr<HIDManager>> managers;
};

class LidAngleSensorCallsTest : public testing::Test {
protected:
    SimulatedMachine machine;
    RecordingHID hid;
    std::shared_ptr<LidAngleSensor> sensor =
        LidAngleSensor::create(exchange(machine.platform(), {.hid = &hid}));
};

TEST_F(LidAngleSensorCallsTest, EveryReadingGetsFeatureReport1WithRoomForEightBytes) {
    sensor->probeSensor();
    sensor->start();
    machine.runLoop.advance(0.1);
    EXPECT_THAT(hid.lid->calls, SizeIs(5)) << "the probe, the start and three polls";
    EXPECT_THAT(hid.lid->calls,
                Each(Call{.type = HIDReportType::Feature, .reportID = 1, .room = 8, .length = 8}));
}

TEST_F(LidAngleSensorCallsTest, ARepeatedProbeKeepsOnlyTheLatestManager) {
    sensor->probeSensor();
    ASSERT_THAT(hid.managers, SizeIs(1));
    EXPECT_FALSE(hid.managers[0].expired());
    sensor->probeSensor();
    ASSERT_THAT(hid.managers, SizeIs(2));
    EXPECT_TRUE(hid.managers[0].expired());
    EXPECT_FALSE(hid.managers[1].expired());
}

} // namespace
} // namespace quorvane
