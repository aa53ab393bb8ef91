// Makes an old tractor that will not start: `tractor FILE.wav`. The starter turns it, it coughs and
// dies, coughs longer and dies, catches, idles as badly as it can, chokes and gives up.
//
// The engine is a mechanism (Engine.h), and what is heard of it are its pulses through its parts,
// as in S. Baldan, H. Lachambre, S. Delle Monache and P. Boussard, "Physically informed car engine
// sound synthesis for virtual and augmented environments", IEEE 2nd VR Workshop on Sonic
// Interactions for Virtual Environments (2015):
//
// - exhaust: the gas that bursts out when a valve opens, and the rest that the piston drives out,
//   through a pipe open at one end: a waveguide with an inverting, dulling reflection;
// - intake: noise of the air drawn in, coloured by the manifold;
// - block: the blow of a charge that lights and the valves that hit their seats, through modes;
// - starter: the mesh of pinion and ring and the whine of the armature, in step with the crank, the
//   louder the harder it is braked; and its relay.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>

#include "resources/synthesis/Draws.h"
#include "resources/synthesis/Engine.h"
#include "resources/synthesis/Filters.h"
#include "resources/synthesis/SoundFile.h"

namespace quorvane::synthesis {
namespace {

constexpr double length = 9.4;

/// One turn of the key: when the starter comes in, how many compressions pass before a charge
/// lights, how many light, and how much of each.
struct Attempt {
    double start;
    int dead;
    int lit;
    double charge;
};

constexpr std::array<Attempt, 3> attempts{
    {{0.08, 2, 2, 0.55}, {2.35, 3, 3, 0.6}, {4.75, 2, 99, 1.0}}};
constexpr double fuelOut = 7.2;

/// The hand at the key and the charges.
class Driver {
public:
    explicit Driver(Draws& draws) : m_draws(draws) {}

    /// True while the starter's pinion is in the ring.
    bool starterOn(double time, double speed) {
        m_time = time;
        if (m_attempt + 1 < attempts.size() && time >= attempts[m_attempt + 1].start) {
            ++m_attempt;
            m_compressions = 0;
            m_released = false;
        }
        m_speed = speed;
        if (speed > 26)
            m_released = true;
        return time >= attempts[m_attempt].start && !m_released;
    }

    double ignite() {
        const Attempt& attempt = attempts[m_attempt];
        const int number = m_compressions++ - attempt.dead;
        if (number < 0 || number >= attempt.lit)
            return 0;
        double charge = attempt.charge * m_draws.between(0.75, 1.1);
        if (m_attempt + 1 == attempts.size() && number > 2) {
            charge = std::clamp((46 - m_speed) / 12, 0.1, 0.8) * m_draws.between(0.5, 1.4);
            if (m_draws.uniform() < 0.12)
                charge = 0;
        }
        if (m_time > fuelOut)
            charge *= std::max(0.0, 1 - (m_time - fuelOut) / 0.7) * m_draws.between(0, 1);
        return charge;
    }

private:
    Draws& m_draws;
    double m_time = 0;
    double m_speed = 0;
    std::size_t m_attempt = 0;
    int m_compressions = 0;
    bool m_released = false;
};

/// The exhaust pipe.
class Pipe {
public:
    double next(double input) {
        const double returned = m_line[m_place];
        m_reflected += 0.35 * (-0.72 * returned - m_reflected);
        const double output = input + m_reflected;
        m_line[m_place] = output;
        m_place = (m_place + 1) % m_line.size();
        return output - returned * 0.3;
    }

private:
    /// There and back: 1.4 m of hot gas.
    Sound m_line = Sound(frames(0.0068));
    std::size_t m_place = 0;
    double m_reflected = 0;
};

class Tractor {
public:
    Sound make() {
        Sound sound(frames(length));
        for (std::size_t i = 0; i < sound.size(); ++i) {
            const double time = static_cast<double>(i) / sampleRate;
            const bool starter = m_driver.starterOn(time, m_engine.speed());
            m_engine.turn(1 / sampleRate, starter);
            sound[i] = m_rumbleCut.next(exhaust() + intake() + block(starter) + starterMotor());
        }
        fade(sound);
        return sound;
    }

private:
    double exhaust() {
        double driven = 0;
        for (std::size_t c = 0; c < Engine::cylinders; ++c) {
            const Engine::Stroke& stroke = m_engine.stroke(c);
            m_burst += std::max(0.0, stroke.blowdown);
            driven += std::abs(stroke.driven);
        }
        m_burst *= std::exp(-1 / (0.006 * sampleRate));
        m_flow += 0.02 * (m_burst + 0.12 * driven - m_flow);
        const double rough = m_flow * (1 + 0.9 * m_draws.normal());
        return m_muffler.next(m_tail.next(m_pipe.next(rough)));
    }

    double intake() {
        double drawn = 0;
        for (std::size_t c = 0; c < Engine::cylinders; ++c)
            drawn += std::abs(m_engine.stroke(c).drawn);
        m_draught += 0.004 * (drawn - m_draught);
        return 0.9 * m_manifold.next(m_draught * m_draws.normal());
    }

    double block(bool starter) {
        double blow = 0;
        for (std::size_t c = 0; c < Engine::cylinders; ++c) {
            const Engine::Stroke& stroke = m_engine.stroke(c);
            blow += 1.2 * stroke.lit * m_draws.between(0.6, 1.2);
            if (stroke.valveClosed)
                blow +=
                    0.25 * std::min(1.0, std::abs(m_engine.speed()) / 40) * m_draws.between(0.4, 1);
        }
        if (starter != m_starter)
            blow += 0.7;
        m_starter = starter;
        return 0.18 * m_iron.next(blow);
    }

    double starterMotor() {
        const double torque = m_engine.starterTorque();
        m_grip += 0.003 * (torque / 190 - m_grip);
        m_turned += m_engine.speed() / (2 * std::numbers::pi) / sampleRate;
        const double ring = 2 * std::numbers::pi * 112 * m_turned;
        const double mesh = std::sin(ring) + 0.6 * std::sin(2 * ring + 1) +
                            0.4 * std::sin(3 * ring) + 0.25 * std::sin(5 * ring);
        const double whine = std::sin(ring * 2.73) + 0.5 * std::sin(ring * 5.46);
        return m_grip * (0.22 * mesh + 0.16 * whine + 0.06 * m_draws.normal());
    }

    static void fade(Sound& sound) {
        const std::size_t tail = frames(0.25);
        for (std::size_t i = 0; i < tail; ++i)
            sound[sound.size() - 1 - i] *= static_cast<double>(i) / static_cast<double>(tail);
    }

    Draws m_draws{45};
    Driver m_driver{m_draws};
    Engine m_engine{[this](std::size_t) { return m_driver.ignite(); }};
    Pipe m_pipe;
    Biquad m_tail = Biquad::highPass(55);
    Biquad m_muffler = Biquad::lowPass(1600);
    Biquad m_manifold = Biquad::bandPass(520, 1.5);
    Biquad m_rumbleCut = Biquad::highPass(45);
    Body m_iron{{{148, 0.030, 0.7},
                 {233, 0.022, 0.6},
                 {410, 0.016, 0.6},
                 {690, 0.010, 0.6},
                 {1180, 0.007, 0.5},
                 {1930, 0.005, 0.5},
                 {2870, 0.004, 0.4},
                 {4300, 0.002, 0.3}}};
    double m_burst = 0;
    double m_flow = 0;
    double m_draught = 0;
    double m_grip = 0;
    double m_turned = 0;
    bool m_starter = false;
};

} // namespace
} // namespace quorvane::synthesis

int main(int argc, char** argv) {
    using namespace quorvane::synthesis;
    return writeSound(std::span(argv, static_cast<std::size_t>(argc)), Tractor().make(), 0.8);
}
