// Makes the creak of a worn hinge in a thin lid: `creak_synthesis FILE.wav`. Deterministic.
//
// A dry hinge does not turn steadily. Its surfaces stick; the turning lid loads the parts around
// them like a spring until static friction is exceeded; they slip, the force drops, and they stick
// again. The slips excite the parts that the hinge is screwed to:
//
// - Friction.h is the contact, dragged at the speed of a hand: when slow, single slips can be
//   counted (a groan); when fast, they merge into a gliding tone (a chirp). Patches of rust make
//   both irregular.
//
// - The body is a bank of modes driven by the contact's force, as in F. Avanzini, S. Serafin and
//   D. Rocchesso, "Interactive simulation of rigid body interaction with friction-induced sound
//   generation", IEEE Transactions on Speech and Audio Processing 13 (2005). The lid rings low and
//   decays in some 15 ms; the metal of the hinge rings higher and decays faster.
//
// The spectrogram shows single lines across all frequencies where the hand is slow, harmonics that
// glide where it is fast, and the modes as horizontal bands.

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>

#include "resources/synthesis/Filters.h"
#include "resources/synthesis/Friction.h"
#include "resources/synthesis/RandomGenerator.h"
#include "resources/synthesis/SoundFile.h"

namespace quorvane::synthesis {
namespace {

/// Seconds.
constexpr double length = 3.2;
/// Simulation steps per sample; the stiff bristles need shorter steps than the sound.
constexpr int substeps = 8;

/// The hand's speed at `time` (s), as the slips per second that it would cause on an even surface.
struct Gesture {
    double time;
    double rate;
};

constexpr std::array<Gesture, 15> gestures{{{0.00, 70},
                                            {0.25, 120},
                                            {0.50, 45},
                                            {0.85, 170},
                                            {1.05, 240},
                                            {1.25, 90},
                                            {1.50, 26},
                                            {1.80, 60},
                                            {2.15, 280},
                                            {2.35, 400},
                                            {2.50, 140},
                                            {2.80, 70},
                                            {3.08, 24},
                                            {3.14, 0.5},
                                            {length, 0.5}}};

/// Moves smoothly from gesture to gesture, with some noise of a correlation time of 0.25 s.
class Hand {
public:
    /// How far it drags in one sample, in the length unit of Friction.h.
    double next(double time, RandomGenerator& random) {
        constexpr double memory = 0.25;
        constexpr double unsteadiness = 0.12;
        /// Length of one slip.
        constexpr double slipLength = 0.9;
        constexpr double keep = 1 - 1 / (memory * sampleRate);
        m_wander = keep * m_wander + std::sqrt(1 - keep * keep) * unsteadiness * random.normal();
        return wanted(time) * (1 + m_wander + m_wander * m_wander / 2) * slipLength / sampleRate;
    }

private:
    double wanted(double time) {
        while (m_gesture + 2 < gestures.size() && time >= gestures[m_gesture + 1].time)
            ++m_gesture;
        const Gesture& from = gestures[m_gesture];
        const Gesture& to = gestures[m_gesture + 1];
        const double way = (time - from.time) / (to.time - from.time);
        return from.rate + way * way * (3 - 2 * way) * (to.rate - from.rate);
    }

    std::size_t m_gesture = 0;
    double m_wander = 0;
};

Body makeLidAndHinge() {
    return Body({
        // The lid's bending modes, inharmonic.
        {214, 0.016, 0.45},
        {372, 0.014, 0.70},
        {655, 0.013, 1.00},
        {983, 0.012, 1.10},
        {1270, 0.010, 0.90},
        {1795, 0.010, 0.80},
        // The hinge's leaves and pin.
        {2480, 0.009, 0.75},
        {3270, 0.007, 0.50},
        {4630, 0.005, 0.35},
        {6350, 0.003, 0.25},
    });
}

Sound makeCreak() {
    constexpr double slipSwing = 700;
    RandomGenerator random(3);
    StickSlip contact(slipSwing, random);
    Hand hand;
    Body body = makeLidAndHinge();
    Sound creak(frames(length));
    double last = 0;
    for (std::size_t i = 0; i < creak.size(); ++i) {
        const double pull = hand.next(static_cast<double>(i) / sampleRate, random);
        double force = 0;
        for (int step = 0; step < substeps; ++step)
            force += contact.move(pull / substeps, 1 / sampleRate / substeps) / substeps;
        // The sound follows the body's acceleration, hence the change of the force.
        creak[i] = body.next(i == 0 ? 0 : force - last);
        last = force;
    }
    return creak;
}

} // namespace
} // namespace quorvane::synthesis

int main(int argc, char** argv) {
    using namespace quorvane::synthesis;
    return writeSound(std::span(argv, static_cast<std::size_t>(argc)), makeCreak(), 0.66);
}
