// Makes the crack of a key pressed on a brittle keyboard: `crack_synthesis FILE.wav`.
// Deterministic.
//
// The sound has two parts, less than 5 ms apart:
//
// - The plastic of the cap cracks. A brittle fracture is an avalanche of small breaks whose
//   energies follow a power law, as P. A. Houle and J. P. Sethna measured on crumpling sheets
//   ("Acoustic emission from crumpling paper", Physical Review E 54, 1996); F. Fontana and
//   R. Bresin used it for synthesis in "Physics-based sound synthesis and control: crushing,
//   walking and running by crumpling sounds" (Colloquium on Musical Informatics, 2003). Breaks are
//   densest at the main one and become rarer as the stress falls. Each releases a splinter that
//   rings like a bar clamped at one end: a longer one is lower and louder and rings longer. Summing
//   such small damped oscillations is P. R. Cook's "Physically informed sonic modeling (PhISM)"
//   (Computer Music Journal 21, 1997).
//
// - The key bottoms out. The cap hits the base plate; the force of the contact follows the
//   non-linear, lossy spring of K. H. Hunt and F. R. E. Crossley, "Coefficient of restitution
//   interpreted as damping in vibroimpact" (Journal of Applied Mechanics 42, 1975), and drives the
//   modes of cap and plate.
//
// The spectrogram shows the main break as one line across all frequencies in the first
// milliseconds, splinters above 1 kHz that become rarer, and below 1 kHz the plate's modes, which
// ring for some 30 ms.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>

#include "resources/synthesis/Filters.h"
#include "resources/synthesis/RandomGenerator.h"
#include "resources/synthesis/SoundFile.h"

namespace quorvane::synthesis {
namespace {

// Seconds: the sound's length, and when the cap breaks and hits the plate.
constexpr double length = 0.2;
constexpr double mainBreak = 0.001;
constexpr double bottom = 0.0055;

/// The force between cap and plate, in N.
Sound bottomingForce() {
    constexpr double mass = 0.0012;
    constexpr double speed = 0.9;
    constexpr double stiffness = 1.6e7;
    constexpr double loss = 0.5;
    constexpr int substeps = 16;
    constexpr double step = 1 / (sampleRate * substeps);
    Sound force(frames(length));
    double depth = 0;
    double velocity = speed;
    for (std::size_t i = frames(bottom); i < force.size() && depth >= 0; ++i)
        for (int substep = 0; substep < substeps && depth >= 0; ++substep) {
            const double spring = stiffness * std::pow(depth, 1.5);
            const double push = std::max(0.0, spring * (1 + loss * velocity));
            force[i] += push / substeps;
            velocity -= push / mass * step;
            depth += velocity * step;
        }
    return force;
}

/// Adds the ringing of a splinter of `size` (0 to 1) that breaks off at `time` (s).
void addSplinter(Sound& sound, double time, double size, double level, RandomGenerator& random) {
    // A bar's frequency is proportional to 1 / length^2, its energy to its length.
    const double frequency = std::min(9500.0, 1500 / std::sqrt(size) * random.between(0.75, 1.3));
    const double decay = 0.0012 + 0.0026 * size;
    const double side = random.uniform() < 0.5 ? -level : level;
    const std::size_t start = frames(time);
    const std::size_t end = std::min(sound.size(), start + frames(9 * decay));
    for (std::size_t i = start; i < end; ++i) {
        const double age = static_cast<double>(i - start) / sampleRate;
        sound[i] +=
            side * std::exp(-age / decay) * std::sin(2 * std::numbers::pi * frequency * age + 0.3);
    }
}

/// The main break, then rarer and weaker ones.
Sound makeAvalanche(RandomGenerator& random) {
    constexpr double calming = 0.013;
    constexpr double end = 0.085;
    Sound sound(frames(length));
    double wait = 0.00007;
    double time = mainBreak;
    while (time < end) {
        const double stress = std::exp(-(time - mainBreak) / calming);
        // 1.6 is the exponent measured for the energies.
        const double size = std::sqrt(random.power(0.0004, 1, 1.6));
        addSplinter(sound, time, size, std::pow(size, 0.3) * stress, random);
        wait *= 1.02;
        time += random.exponential(wait);
    }
    // Large splinters of the main break, then those that break off when the cap hits the plate.
    for (int i = 0; i < 7; ++i)
        addSplinter(sound, mainBreak + 0.0001 * i, random.between(0.05, 0.8), 0.9, random);
    for (int i = 0; i < 4; ++i)
        addSplinter(sound, bottom + 0.0002 * i, random.between(0.02, 0.5), 0.5, random);
    return sound;
}

Sound makeCrack() {
    constexpr double blowLevel = 0.004;
    RandomGenerator random(5);
    Sound crack = makeAvalanche(random);
    const Sound blow = bottomingForce();
    Body plate({{328, 0.012, 0.55},
                {541, 0.011, 0.8},
                {905, 0.009, 0.9},
                {1422, 0.007, 0.8},
                {2210, 0.005, 0.8},
                {3370, 0.003, 0.6},
                {5060, 0.002, 0.4}});
    Biquad floor = Biquad::highPass(240);
    Biquad ceiling = Biquad::lowPass(11000);
    for (std::size_t i = 0; i < crack.size(); ++i)
        crack[i] = ceiling.next(floor.next(crack[i] + blowLevel * plate.next(blow[i])));
    return crack;
}

} // namespace
} // namespace quorvane::synthesis

int main(int argc, char** argv) {
    using namespace quorvane::synthesis;
    return writeSound(std::span(argv, static_cast<std::size_t>(argc)), makeCrack(), 0.84);
}
