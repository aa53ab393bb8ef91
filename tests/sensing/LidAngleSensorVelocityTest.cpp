#include "tests/sensing/LidAngleSensorFixture.h"

#include <cmath>
#include <string>

namespace quorvane {
namespace {

using LidAngleSensorVelocityTest = LidAngleSensorFixture;

TEST_F(LidAngleSensorVelocityTest, TenDegreesInAFifthOfASecondAreFiftyASecond) {
    probeLidAt(100);
    moveLid(50);
    sensor->start();
    machine.runLoop.advance(0.2);
    EXPECT_EQ(sensor->angle(), 110);
    EXPECT_NEAR(sensor->velocity(), 50, 1e-6);
}

TEST_F(LidAngleSensorVelocityTest, ASampleExactlyAsOldAsTheWindowStays) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(106);
    machine.runLoop.advance(0.2);
    EXPECT_NEAR(sensor->velocity(), 30, 1e-6);
    advanceOnePoll();
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorVelocityTest, AFallingAngleHasANegativeVelocity) {
    probeLidAt(100);
    moveLid(-50);
    sensor->start();
    machine.runLoop.advance(0.2);
    EXPECT_NEAR(sensor->velocity(), -50, 1e-6);
}

TEST_F(LidAngleSensorVelocityTest, TheVelocityIsTheSlopeFromTheOldestSampleOfTheWindow) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(103);
    advanceOnePoll();
    EXPECT_NEAR(sensor->velocity(), 90, 1e-4);
    advanceOnePoll();
    EXPECT_NEAR(sensor->velocity(), 45, 1e-4);
}

TEST_F(LidAngleSensorVelocityTest, TheVelocityIsZeroAWindowAfterTheLidStopped) {
    probeLidAt(100);
    sensor->start();
    machine.runLoop.advance(1);
    lid->setAngle(103);
    advanceOnePoll();
    for (int sample = 1; sample <= 5; ++sample) {
        EXPECT_GT(sensor->velocity(), 0) << "the resting sample is in the window";
        advanceOnePoll();
    }
    advanceOnePoll();
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorVelocityTest, AfterAGapLongerThanTheWindowTheVelocityWaitsForNewSamples) {
    pollMovingLid();
    const double before = sensor->velocity();
    machine.runLoop.block(0.5);
    lid->setAngle(20);
    machine.runLoop.advance(0);
    EXPECT_EQ(sensor->angle(), 20);
    EXPECT_EQ(sensor->velocity(), before) << "the history contains only the newest sample";
    machine.runLoop.advance(0.05);
    EXPECT_EQ(sensor->velocity(), 0);
}

// Only two samples in the history, six degrees apart.
struct TwoSamples {
    double secondsApart;
    double velocity;
};

class TwoSamplesTest : public LidAngleSensorFixture,
                       public testing::WithParamInterface<TwoSamples> {};

TEST_P(TwoSamplesTest, GiveAVelocityOnlyWithinTheBoundsOfTheirDistance) {
    probeLidAt(100);
    // `start` reads at once and `stop` keeps the history, so the distance can be chosen.
    sensor->start();
    sensor->stop();
    machine.runLoop.advance(GetParam().secondsApart);
    lid->setAngle(106);
    sensor->start();
    EXPECT_NEAR(sensor->velocity(), GetParam().velocity, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(
    Distances, TwoSamplesTest,
    testing::Values(TwoSamples{0.029, 0}, TwoSamples{0.030, 0}, TwoSamples{0.031, 193.5483871},
                    TwoSamples{0.199, 30.1507538}, TwoSamples{0.200, 30}, TwoSamples{0.201, 0}),
    [](const auto& samples) {
        return std::to_string(std::lround(samples.param.secondsApart * 1000)) + "_ms";
    });

class LatePollTest : public LidAngleSensorFixture {
protected:
    /// After a second of even motion, a late poll reads 20 degrees, because the main thread was
    /// busy; the next poll, `gap` seconds later, is on the grid again and reads 26.
    void pollLateAndThenAfter(double gap) {
        pollMovingLid();
        before = sensor->velocity();
        machine.runLoop.block(0.5 - gap);
        lid->setAngle(20);
        machine.runLoop.advance(0);
        ASSERT_EQ(sensor->angle(), 20);
        EXPECT_EQ(sensor->velocity(), before) << "the history contains only the late sample";
        lid->setAngle(26);
        machine.runLoop.advance(gap);
        ASSERT_EQ(sensor->angle(), 26);
    }

    double before = 0;
};

TEST_F(LatePollTest, Samples29MsApartLeaveTheVelocityAsItWas) {
    pollLateAndThenAfter(0.029);
    EXPECT_EQ(sensor->velocity(), before);
    advanceOnePoll();
    EXPECT_NEAR(sensor->velocity(), 6 / (0.029 + 1.0 / 30), 1e-4);
}

TEST_F(LatePollTest, Samples31MsApartGiveAVelocity) {
    pollLateAndThenAfter(0.031);
    EXPECT_NEAR(sensor->velocity(), 193.5483871, 1e-5);
}

TEST_F(LidAngleSensorVelocityTest, StoppingKeepsTheHistoryForAStartWithinTheWindow) {
    probeLidAt(100);
    sensor->start();
    sensor->stop();
    machine.runLoop.advance(0.1);
    lid->setAngle(110);
    sensor->start();
    EXPECT_NEAR(sensor->velocity(), 100, 1e-6);
}

} // namespace
} // namespace quorvane
