#include "resources/synthesis/Friction.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorvane::synthesis {

namespace {

/// Friction while sliding, relative to that at rest.
constexpr double sliding = 0.42;
/// The speed (lengths a second) at which friction is halfway between these two.
constexpr double fallSpeed = 45;
/// The bristles' stiffness relative to the spring's, and their damping as a share of critical.
constexpr double bristleStiffness = 60;
constexpr double bristleDamping = 0.8;
/// Viscous drag of the remaining grease, per mass.
constexpr double grease = 60;
/// The share of their limit up to which the bristles bend without slipping.
constexpr double elastic = 0.8;
/// The extra static friction of surfaces at rest: the length of sliding over which it is lost, the
/// time (s) in which it is regained, and its share of the static friction.
constexpr double forgetting = 0.15;
constexpr double restTime = 0.006;
constexpr double restGain = 0.3;

// Stick-slip is chaotic: a difference in the last bit soon makes a different creak. So this uses
// only operations that every processor rounds alike (sums, products, quotients, square roots), and
// no functions of the mathematical library, whose rounding depends on the processor.

double square(double x) {
    return x * x;
}

/// From 0 to 1 as `way` goes from 0 to 1, with slope 0 at both ends.
double smooth(double way) {
    return square(way) * (3 - 2 * way);
}

} // namespace

Surface::Surface(double bump, RandomGenerator& random) : m_bump(bump), m_heights(4096) {
    for (double& height : m_heights)
        height = std::clamp(random.normal() / 2, -1.2, 1.2);
}

double Surface::at(double place) const {
    const double count = std::max(0.0, place / m_bump);
    const auto index = static_cast<std::size_t>(count);
    const double way = count - static_cast<double>(index);
    const double from = m_heights[index % m_heights.size()];
    const double to = m_heights[(index + 1) % m_heights.size()];
    return from + smooth(way) * (to - from);
}

StickSlip::StickSlip(double slipRate, RandomGenerator& random)
    : m_bumps(0.31, random), m_ground(13, random), m_grain(0.05, random), m_patches(23, random),
      m_mass(1 / square(2 * std::numbers::pi * slipRate)) {}

double StickSlip::load() const {
    // Patches of rust with smooth metal between them.
    const double rust = 0.5 + 0.5 * m_patches.at(m_place);
    const double height = 0.4 * m_ground.at(m_place) +
                          (0.04 + 0.45 * rust * rust * rust) * m_bumps.at(m_place) +
                          0.1 * m_grain.at(m_place);
    return std::max(0.2, 1 + height + square(height) / 2);
}

double StickSlip::yielding(double speed, double limit) const {
    if (speed * m_bristle <= 0)
        return 0;
    const double bent = std::abs(m_bristle) / limit;
    if (bent <= elastic)
        return 0;
    if (bent >= 1)
        return 1;
    return smooth((bent - elastic) / (1 - elastic));
}

double StickSlip::move(double pull, double duration) {
    m_stretch += pull;
    const double speed = m_speed;
    const double fallen = 1 / (1 + square(speed / fallSpeed));
    const double strength =
        load() * (sliding + (1 - sliding - restGain + restGain * m_rest) * fallen);
    const double limit = strength / bristleStiffness;
    const double bending =
        speed * (1 - yielding(speed, limit) * m_bristle / std::copysign(limit, speed));
    m_bristle += bending * duration;
    const double damping = 2 * bristleDamping * std::sqrt(bristleStiffness * m_mass) * fallen;
    const double friction =
        bristleStiffness * m_bristle + damping * bending + grease * speed * m_mass;
    m_speed += (m_stretch - friction) / m_mass * duration;
    m_place += m_speed * duration;
    m_stretch -= m_speed * duration;
    m_rest += (1 - m_rest) * duration / restTime;
    m_rest /= 1 + std::abs(speed) * duration / forgetting;
    return friction;
}

} // namespace quorvane::synthesis
