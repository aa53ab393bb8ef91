#pragma once

namespace quorvane {

/// Displacement of a mass on a spring from its rest position, and its velocity per second.
struct SpringState {
    double displacement = 0;
    double velocity = 0;

    bool operator==(const SpringState&) const = default;
};

/// A spring as user interfaces describe it. `response` is the period in seconds of the undamped
/// oscillation (angular frequency 2 pi / response), above 0; `dampingFraction` is the fraction of
/// critical damping: below 1 the mass overshoots, from 1 on it does not, at 0 it never rests.
struct Spring {
    double response = 0;
    double dampingFraction = 1;

    /// The state `time` seconds (not negative) after `initial`, in closed form: independent of the
    /// frame rate.
    [[nodiscard]] SpringState after(double time, const SpringState& initial) const;

    /// Whether a mass in `state` is so close to rest (`tolerance` in units of displacement) that it
    /// need not be drawn again.
    [[nodiscard]] bool isAtRest(const SpringState& state, double tolerance) const;
};

} // namespace quorvane
