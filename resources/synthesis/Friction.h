#pragma once

#include <cstddef>
#include <vector>

#include "resources/synthesis/RandomGenerator.h"

namespace quorvane::synthesis {

/// The heights of a worn surface along the path that slides over it: noise of mean 0 whose bumps
/// are about `bump` long.
class Surface {
public:
    Surface(double bump, RandomGenerator& random);

    /// The height at `place`, about -1 to 1; repeats after 4096 bumps.
    [[nodiscard]] double at(double place) const;

private:
    double m_bump;
    std::vector<double> m_heights;
};

/// A piece of a hinge that is dragged by a spring over a worn surface. The contact consists of
/// elastic bristles that bend and then slip: P. Dupont, V. Hayward, B. Armstrong and F. Altpeter,
/// "Single state elastoplastic friction models", IEEE Transactions on Automatic Control 47 (2002),
/// here with a static friction that grows while the surfaces rest, as in E. Rabinowicz, "Friction
/// and Wear of Materials" (1965).
///
/// Units: a force of 1 is the mean static friction of surfaces that have rested; the spring's
/// stiffness is 1, so that a length of 1 is its stretch under that force.
class StickSlip {
public:
    /// `slipRate` in Hz: the natural frequency of piece and spring without friction.
    StickSlip(double slipRate, RandomGenerator& random);

    /// Moves the spring's end by `pull` and simulates `duration` (s). Returns the friction force.
    double move(double pull, double duration);

private:
    [[nodiscard]] double load() const;
    [[nodiscard]] double yielding(double speed, double limit) const;

    Surface m_bumps;
    Surface m_ground;
    Surface m_grain;
    Surface m_patches;
    double m_mass;
    double m_stretch = 0.6;
    double m_place = 0;
    double m_speed = 0;
    double m_bristle = 0;
    double m_rest = 1;
};

} // namespace quorvane::synthesis
