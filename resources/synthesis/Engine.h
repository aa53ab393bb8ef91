#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <utility>

namespace quorvane::synthesis {

/// Crank, flywheel and gas of an old engine of two cylinders and four strokes, turned by a starter
/// and by what burns. Its crank throws stand half a turn apart, so that it fires one and then three
/// half turns apart: the limp of such engines.
///
/// Slow things come of themselves here: compression brakes the crank and lets go of it again, which
/// makes the beats of cranking; an engine that dies swings back from its last compression.
class Engine {
public:
    static constexpr std::size_t cylinders = 2;

    /// What happened to a cylinder during a step.
    struct Stroke {
        /// Pressure over that of the air, in units of it.
        double pressure = 0;
        /// The share of a full charge that lit in this step, or 0.
        double lit = 0;
        /// The pressure over that of the air with which the exhaust valve opened in this step, or
        /// 0.
        double blowdown = 0;
        /// A valve hit its seat in this step.
        bool valveClosed = false;
        /// The rate at which the piston draws air in or drives gas out, 1 at idle's fastest.
        double drawn = 0;
        double driven = 0;
    };

    /// Asked at the end of a compression for the share of a full charge that lights.
    using Ignition = std::function<double(std::size_t cylinder)>;

    explicit Engine(Ignition ignition) : m_ignition(std::move(ignition)) {}

    /// Turns on by `duration` (s), with the starter's pinion in the ring or not.
    void turn(double duration, bool starter);

    [[nodiscard]] const Stroke& stroke(std::size_t cylinder) const { return m_strokes[cylinder]; }

    /// Of the crank, in radians a second.
    [[nodiscard]] double speed() const { return m_speed; }

    /// In N m, like that of the gas on the crank, which shakes the whole engine.
    [[nodiscard]] double starterTorque() const { return m_starterTorque; }

    [[nodiscard]] double gasTorque() const { return m_gasTorque; }

private:
    void move(std::size_t cylinder, double before, double after);
    [[nodiscard]] double pressure(std::size_t cylinder, double phase) const;

    Ignition m_ignition;
    std::array<Stroke, cylinders> m_strokes;
    /// What burns in each, and what its rings have leaked.
    std::array<double, cylinders> m_burning{};
    double m_angle = 4.2;
    double m_speed = 0;
    double m_starterTorque = 0;
    double m_gasTorque = 0;
};

} // namespace quorvane::synthesis
