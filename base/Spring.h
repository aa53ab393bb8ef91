#pragma once

namespace quorvane {

/// Where a mass on a spring is, relative to its place of rest, and how fast it moves per second.
struct SpringState {
    double displacement = 0;
    double velocity = 0;

    bool operator==(const SpringState&) const = default;
};

/// A spring as interfaces describe it. `response` is the time in seconds of one undamped
/// oscillation (angular frequency 2 pi / response), above zero; `dampingFraction` is the fraction
/// of critical damping: below 1 the mass overshoots, from 1 on it does not, at 0 it never rests.
struct Spring {
    double response = 0;
    double dampingFraction = 1;

    /// The state `time` seconds (not negative) after the mass was in `initial`, in closed form: it
    /// does not depend on how many frames were drawn on the way.
    [[nodiscard]] SpringState after(double time, const SpringState& initial) const;

    /// Whether a mass in `state` stays within `tolerance` of its place of rest to the eye, so that
    /// nothing has to be drawn any more.
    [[nodiscard]] bool isAtRest(const SpringState& state, double tolerance) const;
};

} // namespace quorvane
