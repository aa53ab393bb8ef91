// Makes the creak of a dry door hinge: `creak FILE.wav`. The same samples every time.
//
// A dry hinge does not turn steadily. Its surfaces stick; the turning lid winds up the parts around
// them like a spring until the force is more than static friction can hold; they slip, the force
// drops, and they stick again. What is heard is that train of slips through whatever the hinge is
// screwed to. The model has those two halves:
//
// - Stick and slip, event by event. A spring is wound by the lid's speed, which wanders as a hand's
//   does. Static friction rises with the logarithm of the time for which the surfaces have rested
//   (E. Rabinowicz, "Friction and Wear of Materials", 1965) and differs from contact to contact. A
//   slip lets go of most of the force, never of the same share, so the pulses are irregular and
//   their rate, some 30 to 150 a second, follows the speed: that glide is what makes a creak of it.
// - The body: a bank of modes, as in F. Avanzini, S. Serafin and D. Rocchesso, "Interactive
//   simulation of rigid body interaction with friction-induced sound generation", IEEE Transactions
//   on Speech and Audio Processing 13 (2005). Wood rings low and dies within some 15 ms, the metal
//   of the hinge rings higher and shorter. A. Farnell, "Designing Sound" (2010), chapter
//   "Creaking", takes the same two halves.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>
#include <vector>

#include "resources/synthesis/Draws.h"
#include "resources/synthesis/Filters.h"
#include "resources/synthesis/SoundFile.h"

namespace quorvane::synthesis {
namespace {

constexpr double length = 3.2;
constexpr std::size_t frameCount = frames(length);

/// The lid's speed against its mean: an arc from a slow start over a quicker middle to a slow end,
/// and the unsteadiness of a hand on top, as noise that is remembered for a fifth of a second.
class HandSpeed {
public:
    double next(double time, Draws& draws) {
        constexpr double memory = 0.2;
        constexpr double unsteadiness = 0.28;
        const double keep = std::exp(-1 / (memory * sampleRate));
        m_wander = keep * m_wander + std::sqrt(1 - keep * keep) * unsteadiness * draws.normal();
        const double arc = 0.55 + 0.75 * std::pow(std::sin(std::numbers::pi * time / length), 2);
        return arc * std::exp(std::clamp(m_wander, -0.6, 0.6));
    }

private:
    double m_wander = 0;
};

/// The contact of the two surfaces. Forces are in units of the least static friction.
class Contact {
public:
    /// Turns the hinge on by one sample; the force that a slip lets go of, or 0 while it sticks.
    double turn(double speed, Draws& draws) {
        // Wound from rest to the least static friction within this time at mean speed.
        constexpr double windingTime = 0.0135;
        m_force += speed / (windingTime * sampleRate);
        m_restingTime += 1 / sampleRate;
        const double aging = 0.12 * std::log10(1 + m_restingTime / 0.002);
        if (m_force < m_roughness + aging)
            return 0;
        return slip(draws);
    }

private:
    double slip(Draws& draws) {
        // One slip in five catches on the next asperity soon after and is followed by another.
        const bool caught = draws.uniform() < 0.2;
        const double share = caught ? 0.25 + 0.2 * draws.uniform() : 0.8 + 0.15 * draws.uniform();
        const double released = share * m_force;
        m_force -= released;
        m_restingTime = 0;
        m_roughness = std::clamp(1 + 0.1 * draws.normal(), 0.75, 1.3);
        return released;
    }

    double m_force = 0.95;
    double m_restingTime = 0;
    double m_roughness = 1;
};

/// What the hinge is screwed to and what it is made of: frequency in Hz, decay in s, gain.
std::vector<Mode> makeBody() {
    return {
        // The panel, then its higher bending modes, none a multiple of another.
        {236, 0.016, 0.35},
        {411, 0.014, 0.55},
        {683, 0.012, 0.80},
        {957, 0.011, 1.00},
        {1290, 0.009, 1.00},
        {1744, 0.008, 0.95},
        // Leaves and pin of the hinge.
        {2370, 0.007, 1.00},
        {3190, 0.006, 0.95},
        {4480, 0.004, 0.70},
        {6120, 0.003, 0.55},
    };
}

/// The force that the slips put into the body: each lets go over a quarter of a millisecond.
Sound makeSlips(Draws& draws) {
    constexpr std::size_t slipFrames = 11;
    constexpr double rubbing = 0.35;
    Sound force(frameCount + slipFrames);
    HandSpeed hand;
    Contact contact;
    // The last slip rings out before the end.
    const std::size_t lastSlip = frameCount - frames(0.06);
    for (std::size_t frame = 0; frame < lastSlip; ++frame) {
        const double time = static_cast<double>(frame) / sampleRate;
        const double released = contact.turn(hand.next(time, draws), draws);
        if (released == 0)
            continue;
        for (std::size_t i = 0; i < slipFrames; ++i) {
            const double phase = static_cast<double>(i) / slipFrames;
            const double window = 1 - std::cos(2 * std::numbers::pi * phase);
            force[frame + i] += released * window * (1 + rubbing * draws.normal());
        }
    }
    force.resize(frameCount);
    return force;
}

Sound makeCreak() {
    Draws draws(20240229);
    std::vector<Mode> body = makeBody();
    Sound creak = makeSlips(draws);
    for (double& sample : creak) {
        double sum = 0;
        for (Mode& mode : body)
            sum += mode.next(sample);
        sample = sum;
    }
    return creak;
}

} // namespace
} // namespace quorvane::synthesis

int main(int argc, char** argv) {
    using namespace quorvane::synthesis;
    return writeSound(std::span(argv, static_cast<std::size_t>(argc)), makeCreak(), 0.7);
}
