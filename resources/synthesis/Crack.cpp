// Makes the crack of a key pressed on a brittle keyboard: `crack FILE.wav`.
//
// Two things sound when a key goes down on a keyboard that is about to break, almost at once:
//
// - The plastic of the cap and its hinge cracks. A brittle fracture is an avalanche of small
// breaks,
//   each a step of stress some microseconds long. Their energies follow a power law and they come
//   the denser the nearer to the main break, as measured on crumpling sheets by P. A. Houle and
//   J. P. Sethna, "Acoustic emission from crumpling paper", Physical Review E 54 (1996), and as
//   used for synthesis in F. Fontana and R. Bresin, "Physics-based sound synthesis and control:
//   crushing, walking and running by crumpling sounds", Colloquium on Musical Informatics (2003).
// - The key bottoms out. The cap hits the base plate; the force of the contact follows the
//   non-linear, lossy spring of K. H. Hunt and F. R. E. Crossley, "Coefficient of restitution
//   interpreted as damping in vibroimpact", Journal of Applied Mechanics 42 (1975), and drives the
//   modes of the plate.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "resources/synthesis/Draws.h"
#include "resources/synthesis/Filters.h"
#include "resources/synthesis/SoundFile.h"

namespace quorvane::synthesis {
namespace {

constexpr double length = 0.2;
constexpr double crackTime = 0.001;
constexpr double bottomTime = 0.003;

/// The force in N between cap and plate from the moment at which they meet.
Sound bottomingForce() {
    constexpr double mass = 0.0012;
    constexpr double speed = 0.9;
    constexpr double stiffness = 3e7;
    constexpr double loss = 0.6;
    constexpr int substeps = 16;
    constexpr double step = 1 / (sampleRate * substeps);
    Sound force(frames(length));
    double depth = 0;
    double velocity = speed;
    for (std::size_t i = frames(bottomTime); i < force.size() && depth >= 0; ++i)
        for (int substep = 0; substep < substeps && depth >= 0; ++substep) {
            const double spring = stiffness * std::pow(depth, 1.5);
            const double push = std::max(0.0, spring * (1 + loss * velocity));
            force[i] += push / substeps;
            velocity -= push / mass * step;
            depth += velocity * step;
        }
    return force;
}

/// The breaks: the main one, then ever smaller and rarer ones.
Sound fractures(Draws& draws) {
    constexpr double tail = 0.014;
    Sound stress(frames(length));
    double time = crackTime;
    double wait = 0.00012;
    while (time < crackTime + 0.09) {
        const double age = (time - crackTime) / tail;
        const double size = std::sqrt(draws.power(0.02, 1, 1.5)) * std::exp(-age);
        const std::size_t frame = frames(time);
        const double sign = draws.uniform() < 0.5 ? -1 : 1;
        stress[frame] += sign * (age == 0 ? 1.6 : size);
        time += draws.exponential(wait);
        wait *= 1.012;
    }
    return stress;
}

Sound makeCrack() {
    Draws draws(5);
    Sound breaks = fractures(draws);
    Sound bottoming = bottomingForce();
    Body cap({{880, 0.006, 0.5},
              {1710, 0.006, 0.8},
              {2630, 0.005, 1.0},
              {3840, 0.004, 1.0},
              {5210, 0.003, 0.9},
              {7350, 0.002, 0.8},
              {9400, 0.0015, 0.6}});
    Body plate({{330, 0.010, 0.6},
                {540, 0.010, 0.8},
                {905, 0.008, 0.7},
                {1420, 0.006, 0.6},
                {2210, 0.004, 0.5}});
    Biquad rumbleCut = Biquad::highPass(220);
    for (std::size_t i = 0; i < breaks.size(); ++i) {
        const double raw = 0.5 * breaks[i];
        const double sample = raw + cap.next(breaks[i]) + 0.00005 * plate.next(bottoming[i]) +
                              plate.next(0.1 * breaks[i]);
        breaks[i] = rumbleCut.next(sample);
    }
    return breaks;
}

} // namespace
} // namespace quorvane::synthesis

int main(int argc, char** argv) {
    using namespace quorvane::synthesis;
    return writeSound(std::span(argv, static_cast<std::size_t>(argc)), makeCrack(), 0.8);
}
