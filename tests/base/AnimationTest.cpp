#include "base/Animation.h"

#include <cmath>
#include <numbers>

#include <gmock/gmock.h>

namespace quorvane {
namespace {

using testing::DoubleNear;

constexpr double exact = 1e-9;

constexpr Animation glow = Animation::easeInOut(1.5).repeatForever(/*reversing=*/true);

TEST(AnimationProgress, WithoutAnimationIsOneAtOnce) {
    EXPECT_EQ(Animation{}.progress(0), 1);
}

TEST(AnimationProgress, WithoutAnimationIsOneLaterToo) {
    EXPECT_EQ(Animation{}.progress(5), 1);
}

TEST(Animation, FactoriesSetTheirFields) {
    constexpr Animation spring = Animation::spring(0.4, 0.825);
    EXPECT_EQ(spring.curve, Animation::Curve::Spring);
    EXPECT_EQ(spring.response, 0.4);
    EXPECT_EQ(spring.dampingFraction, 0.825);
    EXPECT_FALSE(spring.repeatsForever);
    constexpr Animation linear = Animation::linear(20).repeatForever(/*reversing=*/false);
    EXPECT_EQ(linear.curve, Animation::Curve::Linear);
    EXPECT_EQ(linear.duration, 20);
    EXPECT_TRUE(linear.repeatsForever);
    EXPECT_FALSE(linear.autoreverses);
    EXPECT_EQ(glow.curve, Animation::Curve::EaseInOut);
    EXPECT_EQ(glow.duration, 1.5);
    EXPECT_TRUE(glow.repeatsForever && glow.autoreverses);
}

TEST(AnimationProgress, IsLinearOverItsDurationAndThenRests) {
    constexpr Animation animation = Animation::linear(20);
    EXPECT_EQ(animation.progress(0), 0);
    EXPECT_THAT(animation.progress(5), DoubleNear(0.25, exact));
    EXPECT_THAT(animation.progress(19.999), DoubleNear(0.99995, exact));
    EXPECT_EQ(animation.progress(20), 1);
    EXPECT_EQ(animation.progress(1000), 1);
}

TEST(AnimationProgress, StartsOverWhenItRepeatsWithoutReversing) {
    constexpr Animation rotation = Animation::linear(20).repeatForever(/*reversing=*/false);
    EXPECT_THAT(rotation.progress(19.9), DoubleNear(0.995, exact));
    EXPECT_THAT(rotation.progress(20.1), DoubleNear(0.005, exact));
    EXPECT_THAT(rotation.progress(2030), DoubleNear(0.5, exact));
}

TEST(AnimationProgress, GoesUpAndDownWhenItReverses) {
    for (const double period : {0.0, 3.0, 300.0}) {
        EXPECT_THAT(glow.progress(period), DoubleNear(0, exact));
        EXPECT_THAT(glow.progress(period + 0.75), DoubleNear(0.5, exact));
        EXPECT_THAT(glow.progress(period + 1.5), DoubleNear(1, exact));
        EXPECT_THAT(glow.progress(period + 2.25), DoubleNear(0.5, exact));
    }
    for (double time = 0; time < 1.5; time += 0.1)
        EXPECT_THAT(glow.progress(3 - time), DoubleNear(glow.progress(time), exact));
}

// Points of the curve, taken from its definition: at parameter s the time is x(s), the value y(s).
TEST(AnimationProgress, EasesInAndOutAlongItsCurve) {
    for (double s = 0.05; s < 1; s += 0.05) {
        const double x = 3 * (1 - s) * (1 - s) * s * 0.42 + 3 * (1 - s) * s * s * 0.58 + s * s * s;
        const double y = 3 * (1 - s) * s * s + s * s * s;
        EXPECT_THAT(glow.progress(1.5 * x), DoubleNear(y, exact)) << s;
    }
    EXPECT_LT(glow.progress(0.15), 0.03) << "it begins slowly";
    EXPECT_GT(glow.progress(1.35), 0.97) << "it ends slowly";
}

// x(t) = 1 - e^(-zwt) (cos(dt) + zw/d sin(dt)), d = w sqrt(1 - z^2), for a start at rest.
TEST(AnimationProgress, OfASpringIsTheClosedForm) {
    constexpr Animation pop = Animation::spring(0.6, 0.6);
    const double frequency = 2 * std::numbers::pi / 0.6;
    const double damped = frequency * 0.8;
    for (double time = 0; time < 2; time += 0.05) {
        const double expected =
            1 - std::exp(-0.6 * frequency * time) *
                    (std::cos(damped * time) + 0.6 / 0.8 * std::sin(damped * time));
        EXPECT_THAT(pop.progress(time), DoubleNear(expected, exact)) << time;
    }
    EXPECT_THAT(pop.progress(std::numbers::pi / damped),
                DoubleNear(1 + std::exp(-0.75 * std::numbers::pi), exact))
        << "the first overshoot of a damping fraction of 0.6";
}

TEST(AnimationProgress, OfTheScreenSpringHardlyOvershoots) {
    constexpr Animation change = Animation::spring(0.4, 0.825);
    double highest = 0;
    for (double time = 0; time < 2; time += 0.01)
        highest = std::max(highest, change.progress(time));
    EXPECT_GT(highest, 1.005);
    EXPECT_LT(highest, 1.02);
    EXPECT_THAT(change.progress(1), DoubleNear(1, 1e-4));
}

} // namespace
} // namespace quorvane
