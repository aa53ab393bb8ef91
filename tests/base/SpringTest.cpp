#include "base/Spring.h"

#include <cmath>
#include <numbers>

#include <gmock/gmock.h>

namespace quorvane {
namespace {

using testing::DoubleNear;

// The same motion by numerical integration, as an independent check: x'' = -w^2 x - 2 z w x'.
SpringState integrate(const Spring& spring, double time, SpringState state) {
    constexpr int steps = 200'000;
    const double frequency = 2 * std::numbers::pi / spring.response;
    const double step = time / steps;
    const auto acceleration = [&](double x, double v) {
        return -frequency * frequency * x - 2 * spring.dampingFraction * frequency * v;
    };
    for (int i = 0; i < steps; ++i) {
        const double half =
            state.velocity + acceleration(state.displacement, state.velocity) * step / 2;
        state.displacement += half * step;
        state.velocity = half + acceleration(state.displacement, half) * step / 2;
    }
    return state;
}

class SpringOfAnyDamping : public testing::TestWithParam<double> {};

INSTANTIATE_TEST_SUITE_P(Dampings, SpringOfAnyDamping,
                         testing::Values(0.0, 0.2, 0.6, 0.825, 0.995, 1 - 1e-9, 1.0, 1 + 1e-9,
                                         1.005, 1.5, 4.0));

TEST_P(SpringOfAnyDamping, MovesAsTheEquationOfMotionSays) {
    const Spring spring{.response = 0.4, .dampingFraction = GetParam()};
    const SpringState initial{.displacement = -1, .velocity = 3};
    for (const double time : {0.01, 0.1, 0.25, 0.7}) {
        const SpringState expected = integrate(spring, time, initial);
        const SpringState actual = spring.after(time, initial);
        EXPECT_NEAR(actual.displacement, expected.displacement, 1e-4) << "at " << time;
        EXPECT_NEAR(actual.velocity, expected.velocity, 2e-3) << "at " << time;
    }
}

TEST_P(SpringOfAnyDamping, StartsAtItsInitialState) {
    const Spring spring{.response = 0.6, .dampingFraction = GetParam()};
    const SpringState initial{.displacement = 2.5, .velocity = -7};
    const SpringState actual = spring.after(0, initial);
    EXPECT_THAT(actual.displacement, DoubleNear(2.5, 1e-9));
    EXPECT_THAT(actual.velocity, DoubleNear(-7, 1e-6));
}

TEST_P(SpringOfAnyDamping, DoesNotDependOnTheNumberOfSteps) {
    const Spring spring{.response = 0.4, .dampingFraction = GetParam()};
    const SpringState initial{.displacement = -1, .velocity = 0};
    const SpringState inTwoSteps = spring.after(0.13, spring.after(0.07, initial));
    const SpringState inOne = spring.after(0.2, initial);
    EXPECT_THAT(inTwoSteps.displacement, DoubleNear(inOne.displacement, 1e-6));
    EXPECT_THAT(inTwoSteps.velocity, DoubleNear(inOne.velocity, 1e-5));
}

TEST(Spring, WithoutDampingComesBackAfterOneResponse) {
    const Spring spring{.response = 0.4, .dampingFraction = 0};
    const SpringState state = spring.after(0.4, {.displacement = -1, .velocity = 0});
    EXPECT_THAT(state.displacement, DoubleNear(-1, 1e-9));
    EXPECT_THAT(state.velocity, DoubleNear(0, 1e-7));
}

TEST(Spring, OvershootsAccordingToItsDampingFraction) {
    const double damping = 0.6;
    const Spring spring{.response = 0.6, .dampingFraction = damping};
    const double root = std::sqrt(1 - damping * damping);
    const double timeOfPeak = 0.6 / (2 * root);
    const SpringState peak = spring.after(timeOfPeak, {.displacement = -0.5, .velocity = 0});
    EXPECT_THAT(peak.displacement,
                DoubleNear(0.5 * std::exp(-damping * std::numbers::pi / root), 1e-9));
    EXPECT_THAT(peak.velocity, DoubleNear(0, 1e-9));
}

TEST(Spring, FromCriticalDampingOnNeverOvershoots) {
    for (const double damping : {1.0, 1.2, 5.0}) {
        const Spring spring{.response = 0.4, .dampingFraction = damping};
        for (int i = 1; i < 1000; ++i)
            ASSERT_LT(spring.after(i * 0.005, {.displacement = -1, .velocity = 0}).displacement, 0)
                << damping << " after " << i;
    }
}

TEST(Spring, RestsOnceItIsNearAndSlow) {
    const Spring spring{.response = 0.4, .dampingFraction = 0.825};
    EXPECT_TRUE(spring.isAtRest({.displacement = 0.0009, .velocity = 0.001}, 0.001));
    EXPECT_FALSE(spring.isAtRest({.displacement = 0.0011, .velocity = 0}, 0.001));
    EXPECT_FALSE(spring.isAtRest({.displacement = -0.0011, .velocity = 0}, 0.001));
    // Crossing the rest position: within a radian, 0.4 / 2 pi s, it moves by 0.00099 and 0.00101.
    EXPECT_TRUE(spring.isAtRest({.displacement = 0, .velocity = 0.015551}, 0.001));
    EXPECT_FALSE(spring.isAtRest({.displacement = 0, .velocity = 0.015865}, 0.001));
    EXPECT_FALSE(spring.isAtRest({.displacement = 0, .velocity = -0.015865}, 0.001));
    EXPECT_FALSE(spring.isAtRest({.displacement = 0, .velocity = 1}, 0.001));
    EXPECT_TRUE(spring.isAtRest(spring.after(1.5, {.displacement = -1, .velocity = 0}), 0.001));
}

} // namespace
} // namespace quorvane
