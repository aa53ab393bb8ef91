#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <utility>

namespace quorvane::synthesis {

/// Crank, flywheel and gas of an old two-cylinder four-stroke engine, turned by a starter and by
/// combustion. Its crank throws are half a turn apart, so that the intervals between ignitions are
/// alternately one and three half turns: the uneven beat of such engines.
///
/// The slow changes of speed follow from the model: each compression brakes the crank and then
/// drives it, which makes the rhythm of cranking; when the engine stops, the last compression turns
/// it back.
class Engine {
public:
    static constexpr std::size_t cylinders = 2;

    /// What happened to a cylinder during a step.
    struct Stroke {
        /// Pressure above that of the air, in units of the air pressure.
        double pressure = 0;
        /// The share of a full charge that ignited in this step, or 0.
        double lit = 0;
        /// `pressure` just before the exhaust valve opened in this step, or 0.
        double blowdown = 0;
        /// A valve hit its seat in this step.
        bool valveClosed = false;
        /// The rate at which the piston draws air in or drives gas out; 1 is the highest at idle.
        double drawn = 0;
        double driven = 0;
    };

    /// Called at the end of a compression; returns the share of a full charge that ignites.
    using Ignition = std::function<double(std::size_t cylinder)>;

    explicit Engine(Ignition ignition) : m_ignition(std::move(ignition)) {}

    /// Simulates the next `duration` (s); `starter`: with the starter engaged.
    void turn(double duration, bool starter);

    [[nodiscard]] const Stroke& stroke(std::size_t cylinder) const { return m_strokes[cylinder]; }

    /// Speed of the crank, in radians a second.
    [[nodiscard]] double speed() const { return m_speed; }

    /// Torques on the crank, in N m. That of the gas shakes the whole engine.
    [[nodiscard]] double starterTorque() const { return m_starterTorque; }

    [[nodiscard]] double gasTorque() const { return m_gasTorque; }

private:
    void move(std::size_t cylinder, double before, double after);
    [[nodiscard]] double pressure(std::size_t cylinder, double phase) const;

    Ignition m_ignition;
    std::array<Stroke, cylinders> m_strokes;
    /// The share of a full charge that burns in each cylinder.
    std::array<double, cylinders> m_burning{};
    double m_angle = 4.2;
    double m_speed = 0;
    double m_starterTorque = 0;
    double m_gasTorque = 0;
};

} // namespace quorvane::synthesis
