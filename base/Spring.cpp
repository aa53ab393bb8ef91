#include "base/Spring.h"

#include <cmath>
#include <numbers>

namespace quorvane {

namespace {

// This close to critical damping, the difference of the two nearly equal roots loses more digits
// than treating the damping as critical.
constexpr double criticalBand = 1e-6;

SpringState underdamped(double frequency, double damping, double time, const SpringState& initial) {
    const auto [x, v] = initial;
    const double decay = damping * frequency;
    const double damped = frequency * std::sqrt(1 - damping * damping);
    const double cosine = std::cos(damped * time);
    const double sine = std::sin(damped * time);
    const double envelope = std::exp(-decay * time);
    return {.displacement = envelope * (x * cosine + (v + decay * x) / damped * sine),
            .velocity =
                envelope * (v * cosine - (frequency * frequency * x + decay * v) / damped * sine)};
}

SpringState criticallyDamped(double frequency, double time, const SpringState& initial) {
    const auto [x, v] = initial;
    const double slope = v + frequency * x;
    const double envelope = std::exp(-frequency * time);
    return {.displacement = envelope * (x + slope * time),
            .velocity = envelope * (v - frequency * slope * time)};
}

SpringState overdamped(double frequency, double damping, double time, const SpringState& initial) {
    const auto [x, v] = initial;
    const double spread = std::sqrt(damping * damping - 1);
    const double slowRate = -frequency * (damping - spread);
    const double fastRate = -frequency * (damping + spread);
    const double slow = (v - fastRate * x) / (slowRate - fastRate) * std::exp(slowRate * time);
    const double fast = (slowRate * x - v) / (slowRate - fastRate) * std::exp(fastRate * time);
    return {.displacement = slow + fast, .velocity = slowRate * slow + fastRate * fast};
}

} // namespace

SpringState Spring::after(double time, const SpringState& initial) const {
    const double frequency = 2 * std::numbers::pi / response;
    if (std::abs(dampingFraction - 1) < criticalBand)
        return criticallyDamped(frequency, time, initial);
    if (dampingFraction < 1)
        return underdamped(frequency, dampingFraction, time, initial);
    return overdamped(frequency, dampingFraction, time, initial);
}

bool Spring::isAtRest(const SpringState& state, double tolerance) const {
    // The velocity counts as the distance it would cover within one radian of oscillation.
    const double reach = std::abs(state.velocity) * response / (2 * std::numbers::pi);
    return std::abs(state.displacement) < tolerance && reach < tolerance;
}

} // namespace quorvane
