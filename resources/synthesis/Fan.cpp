// Makes the roar of an overloaded small blower, as a loop: `fan_synthesis FILE.wav`.
//
// The sources of a centrifugal fan's noise are those of W. Neise, "Noise reduction in centrifugal
// fans: a literature survey", Journal of Sound and Vibration 45 (1976):
//
// - Rotation. Each blade that passes the cutoff of the scroll causes a pressure pulse: a line at
//   the number of blades times the revolutions per second, and its harmonics.
//
// - Turbulence. Vortices shed by the blades make broadband noise, which grows with the air's speed
//   and is modulated at the blade-pass rate. Resonances of the case filter it.
//
// The bearing is worn. Balls that roll over a spall in the outer race strike it at the ball-pass
// rate, with some jitter, and hardest when the imbalance of the wheel presses on them: the model
// and the jitter are those of R. B. Randall and J. Antoni, "Rolling element bearing diagnostics - A
// tutorial", Mechanical Systems and Signal Processing 25 (2011).
//
// The loop has no seam: the wheel makes a whole number of turns in it, slow changes have a whole
// number of periods, and noise passes its filters twice, so that they end in the state in which
// they began.

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>

#include "resources/synthesis/Filters.h"
#include "resources/synthesis/RandomGenerator.h"
#include "resources/synthesis/SoundFile.h"

namespace quorvane::synthesis {
namespace {

constexpr double length = 10;
constexpr std::size_t frameCount = frames(length);
/// Turns of the wheel in the whole loop.
constexpr double turns = 980;
constexpr double blades = 23;
constexpr double fullTurn = 2 * std::numbers::pi;

/// A sine with `times` periods (a whole number) in the loop. `phase` is in turns.
struct Wave {
    double times;
    double depth;
    double phase;

    [[nodiscard]] double at(double time) const {
        return depth * std::sin(fullTurn * (times * time / length + phase));
    }

    /// The derivative of `at`, per second.
    [[nodiscard]] double slopeAt(double time) const {
        const double rate = fullTurn * times / length;
        return rate * depth * std::cos(fullTurn * (times * time / length + phase));
    }
};

/// How far the wheel is ahead of one that turns evenly, in turns.
constexpr std::array<Wave, 4> hunting{
    {{2, 1.5, 0.1}, {3, 1.1, 0.7}, {7, 0.35, 0.4}, {17, 0.06, 0.9}}};
/// Changes of the air's resistance, relative: covered slots, dust, stall.
constexpr std::array<Wave, 4> resistance{
    {{1, 0.05, 0.3}, {3, 0.06, 0.2}, {5, 0.05, 0.6}, {23, 0.05, 0.8}}};
/// Changes of the bearing's rattle, relative.
constexpr std::array<Wave, 3> looseness{{{4, 0.35, 0.55}, {9, 0.25, 0.15}, {31, 0.2, 0.7}}};

double sum(std::span<const Wave> waves, double time) {
    double sum = 0;
    for (const Wave& wave : waves)
        sum += wave.at(time);
    return sum;
}

/// How far the wheel has turned at `time` (s), in turns.
double angle(double time) {
    return turns * time / length + sum(hunting, time);
}

/// The amplitude of the air's sound: the wheel's speed to the power of 2.5, times the resistance.
double strain(double time) {
    double speed = 1;
    for (const Wave& wave : hunting)
        speed += wave.slopeAt(time) * length / turns;
    return std::pow(speed, 2.5) * (1 + sum(resistance, time));
}

/// Runs `filter` over the loop twice and keeps the second pass.
template <typename Filter>
void filterLoop(Sound& sound, Filter filter) {
    for (const double sample : sound)
        filter.next(sample);
    for (double& sample : sound)
        sample = filter.next(sample);
}

Sound bladeTone() {
    Sound tone(frameCount);
    for (std::size_t i = 0; i < frameCount; ++i) {
        const double time = static_cast<double>(i) / sampleRate;
        const double turn = angle(time);
        const double phase = fullTurn * turn;
        const double load = strain(time) * (1 + 0.15 * std::sin(phase));
        tone[i] = load * (std::sin(blades * phase) + 0.6 * std::sin(2 * blades * phase + 1) +
                          0.3 * std::sin(3 * blades * phase + 2)) +
                  0.5 * std::sin(phase) + 0.3 * std::sin(2 * phase + 0.5);
    }
    return tone;
}

Sound turbulence(RandomGenerator& random) {
    Sound white(frameCount);
    for (double& sample : white)
        sample = random.normal();
    filterLoop(white, Biquad::highPass(160));
    filterLoop(white, Biquad::lowPass(5200));
    Sound noise = white;
    filterLoop(noise, Body({{310, 0.0030, 0.25},
                            {620, 0.0016, 0.2},
                            {1150, 0.0012, 0.25},
                            {2050, 0.0008, 0.2},
                            {3400, 0.0006, 0.2}}));
    for (std::size_t i = 0; i < frameCount; ++i) {
        const double time = static_cast<double>(i) / sampleRate;
        const double phase = fullTurn * angle(time);
        noise[i] = (0.35 * white[i] + noise[i]) * strain(time) *
                   (1 + 0.12 * std::sin(phase) + 0.2 * std::sin(blades * phase));
    }
    return noise;
}

Sound bearing(RandomGenerator& random) {
    constexpr double hitsPerTurn = 2.6;
    Sound hits(frameCount);
    const auto count = static_cast<int>(hitsPerTurn * turns);
    for (int hit = 0; hit < count; ++hit) {
        const double time = length * (hit + random.between(0, 0.25)) / count;
        const double load = 1 + 0.7 * std::sin(fullTurn * angle(time));
        hits[frames(time) % frameCount] +=
            load * random.between(0.5, 1) * (1 + sum(looseness, time));
    }
    filterLoop(hits, Body({{1480, 0.002, 0.6}, {3120, 0.0016, 1}, {4870, 0.0011, 0.8}}));
    return hits;
}

Sound makeFan() {
    RandomGenerator random(8);
    Sound fan = bladeTone();
    const Sound air = turbulence(random);
    const Sound balls = bearing(random);
    for (std::size_t i = 0; i < frameCount; ++i)
        fan[i] = 0.11 * fan[i] + 0.06 * air[i] + 0.11 * balls[i];
    return fan;
}

} // namespace
} // namespace quorvane::synthesis

int main(int argc, char** argv) {
    using namespace quorvane::synthesis;
    return writeSound(std::span(argv, static_cast<std::size_t>(argc)), makeFan(), 0.82);
}
