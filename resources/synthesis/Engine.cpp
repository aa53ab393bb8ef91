#include "resources/synthesis/Engine.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorvane::synthesis {

namespace {

constexpr double pi = std::numbers::pi;
/// A cylinder's displacement in m^3, and the air's pressure in Pa.
constexpr double displacement = 1.0e-3;
constexpr double airPressure = 1.0e5;
constexpr double compressionRatio = 6;
/// Exponent of compression and expansion; below the adiabatic 1.4, because the iron takes heat.
constexpr double polytropic = 1.3;
/// Moment of inertia of flywheel and crank, in kg m^2.
constexpr double inertia = 1.9;
/// A full charge multiplies the pressure by 1 + heat.
constexpr double heat = 2.4;
/// The share of the compressed gas that leaks past the rings.
constexpr double leak = 0.12;
/// Angles of the crank after ignition, in radians, and its highest speed at idle, in radians a
/// second.
constexpr double burnAngle = 0.6;
constexpr double exhaustOpens = 0.78 * pi;
constexpr double intakeOpens = 2 * pi;
constexpr double intakeCloses = 3.2 * pi;
constexpr double idleSpeed = 42;

/// A cylinder's position in its four strokes: 0 at ignition, up to 4 pi.
double phaseOf(double angle, std::size_t cylinder) {
    const double phase = std::fmod(angle - static_cast<double>(cylinder) * pi, 4 * pi);
    return phase < 0 ? phase + 4 * pi : phase;
}

double volume(double phase) {
    return displacement * (1 / (compressionRatio - 1) + (1 - std::cos(phase)) / 2);
}

} // namespace

double Engine::pressure(std::size_t cylinder, double phase) const {
    if (phase >= exhaustOpens && phase < intakeCloses)
        return 0;
    const double squeezed = std::pow(volume(pi) / volume(phase), polytropic);
    if (phase >= intakeCloses)
        return squeezed * std::pow(volume(intakeCloses) / volume(pi), polytropic) - 1;
    const double burnt = std::min(1.0, phase / burnAngle);
    return squeezed * (1 - leak * burnt) * (1 + heat * m_burning[cylinder] * burnt) - 1;
}

void Engine::move(std::size_t cylinder, double before, double after) {
    Stroke& stroke = m_strokes[cylinder];
    stroke = {};
    if (before > 3 * pi && after < pi)
        stroke.lit = m_burning[cylinder] = m_ignition(cylinder);
    if (before < exhaustOpens && after >= exhaustOpens && after < intakeOpens)
        stroke.blowdown = pressure(cylinder, before);
    stroke.valveClosed = (before < intakeCloses && after >= intakeCloses) ||
                         (before < 2.1 * pi && after >= 2.1 * pi);
    stroke.pressure = pressure(cylinder, after);
    const double rate = std::abs(std::sin(after)) * m_speed / idleSpeed;
    if (after >= intakeOpens && after < 3 * pi)
        stroke.drawn = rate;
    if (after >= pi && after < intakeOpens)
        stroke.driven = rate;
}

void Engine::turn(double duration, bool starter) {
    // N m, and radians a second: a crank faster than that overruns the starter's clutch.
    constexpr double stallTorque = 185;
    constexpr double freeSpeed = 19;
    m_starterTorque = starter ? stallTorque * std::clamp(1 - m_speed / freeSpeed, 0.0, 1.0) : 0;
    m_gasTorque = 0;
    for (std::size_t cylinder = 0; cylinder < cylinders; ++cylinder) {
        const double slope = displacement / 2 * std::sin(phaseOf(m_angle, cylinder));
        m_gasTorque += pressure(cylinder, phaseOf(m_angle, cylinder)) * airPressure * slope;
    }
    double torque = m_starterTorque + m_gasTorque;
    // Dry friction, smooth around standstill, and the drag of oil.
    torque -= 30 * std::tanh(m_speed / 0.3) + 0.4 * m_speed;
    const double before = m_angle;
    m_speed += torque / inertia * duration;
    m_angle += m_speed * duration;
    for (std::size_t cylinder = 0; cylinder < cylinders; ++cylinder)
        move(cylinder, phaseOf(before, cylinder), phaseOf(m_angle, cylinder));
}

} // namespace quorvane::synthesis
