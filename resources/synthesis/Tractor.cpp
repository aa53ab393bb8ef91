// Makes the sound of an old tractor that will not start: `tractor_synthesis FILE.wav`. Two attempts
// end after a few ignitions; at the third the engine starts, idles unevenly, runs out of fuel and
// stops. Deterministic.
//
// Engine.h simulates the engine's mechanics, Driver.h the person who starts it. The sound is that
// of the engine's pulses, filtered by its parts, as in S. Baldan, H. Lachambre, S. Delle Monache
// and P. Boussard, "Physically informed car engine sound synthesis for virtual and augmented
// environments", IEEE 2nd VR Workshop on Sonic Interactions for Virtual Environments (2015):
//
// - exhaust: the gas that escapes when a valve opens, and the rest that the piston pushes out,
//   through a pipe open at one end: a waveguide with an inverting low-pass reflection;
//
// - intake: noise of the air drawn in, filtered by the manifold, quieter at low speed; a weak
//   charge still burns when the intake opens and blows back through it: a cough;
//
// - block: ignitions and valves that hit their seats, through modes; gas that leaks past worn rings
//   (a hiss); sheet metal that rattles when the engine shakes in its mounts;
//
// - starter: its relay, the meshing of pinion and ring gear and the whine of the armature,
//   proportional to the crank's speed and louder under load; when released, it runs down.
//
// 12 to 50 Hz are left to the rumble that the program plays at the same time.
//
// The spectrogram shows the whine's lines, which bend at every compression; coughs as short
// vertical bars; ignitions in pairs while the engine idles; at the end, the crank's swing back and
// a hiss.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>

#include "resources/synthesis/Driver.h"
#include "resources/synthesis/Engine.h"
#include "resources/synthesis/Filters.h"
#include "resources/synthesis/RandomGenerator.h"
#include "resources/synthesis/SoundFile.h"

namespace quorvane::synthesis {
namespace {

constexpr double length = 9.7;
constexpr double fullTurn = 2 * std::numbers::pi;

/// A one-pole low-pass filter of time constant `time` (s).
class Follower {
public:
    explicit Follower(double time) : m_share(1 - std::exp(-1 / (time * sampleRate))) {}

    double next(double wanted) { return m_value += m_share * (wanted - m_value); }

private:
    double m_share;
    double m_value = 0;
};

/// 1.4 m of exhaust pipe filled with hot gas, closed at the valve.
class Pipe {
public:
    /// The sample that leaves the open end as `input` enters at the valve.
    double next(double input) {
        constexpr double reflection = -0.72;
        double& end = m_line[m_place];
        const double arrived = end;
        end = input + m_dulled.next(reflection * arrived);
        m_place = (m_place + 1) % m_line.size();
        return (1 + reflection) * arrived + 0.5 * end;
    }

private:
    static constexpr double thereAndBack = 0.0068;
    Sound m_line = Sound(frames(thereAndBack));
    std::size_t m_place = 0;
    Follower m_dulled{0.00006};
};

class Exhaust {
public:
    double next(const Engine& engine, RandomGenerator& random) {
        double driven = 0;
        for (std::size_t cylinder = 0; cylinder < Engine::cylinders; ++cylinder) {
            m_gas += std::max(0.0, engine.stroke(cylinder).blowdown);
            driven += std::abs(engine.stroke(cylinder).driven);
        }
        m_gas *= std::exp(-1 / (0.028 * sampleRate));
        const double flow = m_valve.next(m_gas + 0.2 * std::sqrt(driven));
        const double rough = flow * (1 + 0.7 * m_eddies.next(random.normal()));
        return m_muffler.next(m_mouth.next(m_pipe.next(rough)));
    }

private:
    double m_gas = 0;
    Follower m_valve{0.0012};
    Biquad m_eddies = Biquad::lowPass(2500);
    Pipe m_pipe;
    Biquad m_mouth = Biquad::highPass(90);
    Biquad m_muffler = Biquad::lowPass(1900);
};

class Intake {
public:
    double next(const Engine& engine, RandomGenerator& random) {
        double drawn = 0;
        for (std::size_t cylinder = 0; cylinder < Engine::cylinders; ++cylinder) {
            const Engine::Stroke& stroke = engine.stroke(cylinder);
            drawn += std::abs(stroke.drawn);
            const bool weak = stroke.blowdown > 0.05 && stroke.blowdown < 1.6;
            m_spit += weak ? 1.6 - 0.5 * stroke.blowdown : 0;
        }
        m_spit *= std::exp(-1 / (0.022 * sampleRate));
        const double draught = m_draught.next(std::sqrt(drawn));
        const double air = random.normal();
        return draught * (0.8 * m_manifold.next(air) + 0.5 * m_throat.next(air)) +
               m_cough.next(m_throttle.next(m_spit) * air);
    }

private:
    double m_spit = 0;
    Follower m_draught{0.006};
    Follower m_throttle{0.002};
    Biquad m_manifold = Biquad::bandPass(430, 2);
    Biquad m_throat = Biquad::bandPass(1150, 7);
    Biquad m_cough = Biquad::bandPass(620, 1.2);
};

class Block {
public:
    double next(const Engine& engine, bool starter, RandomGenerator& random) {
        double blow = starter == m_starter ? 0 : 0.9;
        double squeezed = 0;
        m_starter = starter;
        const double pace = std::min(1.0, std::abs(engine.speed()) / 40);
        for (std::size_t cylinder = 0; cylinder < Engine::cylinders; ++cylinder) {
            const Engine::Stroke& stroke = engine.stroke(cylinder);
            blow += stroke.lit * random.between(0.6, 1.2);
            blow += stroke.valveClosed ? 0.5 * pace * random.between(0.4, 1) : 0;
            squeezed += std::max(0.0, stroke.pressure);
        }
        return m_iron.next(blow) + rattle(engine, random) + hiss(squeezed, random);
    }

private:
    /// Loose sheet metal, shaken by the engine's movement in its mounts.
    double rattle(const Engine& engine, RandomGenerator& random) {
        constexpr double play = 0.35;
        const double shake = std::abs(m_mounts.next(engine.gasTorque() * 1.0e-6));
        return m_sheet.next(std::max(0.0, shake - play) * random.normal());
    }

    double hiss(double squeezed, RandomGenerator& random) {
        return 0.02 * m_rings.next(squeezed * random.normal());
    }

    bool m_starter = false;
    Body m_iron{{{148, 0.030, 0.7},
                 {233, 0.022, 0.6},
                 {410, 0.016, 0.6},
                 {690, 0.010, 0.5},
                 {1180, 0.007, 0.4},
                 {1930, 0.005, 0.4},
                 {2870, 0.004, 0.3},
                 {4300, 0.002, 0.2}}};
    Mode m_mounts{9, 0.12, 1};
    Body m_sheet{{{720, 0.010, 0.05}, {1330, 0.009, 0.05}, {2240, 0.007, 0.04}}};
    Biquad m_rings = Biquad::bandPass(2300, 1.5);
};

class Starter {
public:
    double next(const Engine& engine, bool on, RandomGenerator& random) {
        constexpr double teeth = 112;
        constexpr double stallTorque = 185;
        if (on)
            m_speed = std::abs(engine.speed());
        else
            m_speed *= std::exp(-1 / (0.22 * sampleRate));
        const double grip = m_grip.next(on ? 0.15 + engine.starterTorque() / stallTorque : 0);
        const double spin = m_spin.next(on ? 1 : 0);
        m_turned += m_speed / fullTurn / sampleRate;
        const double ring = fullTurn * teeth * m_turned;
        const double mesh = std::sin(ring) + 0.6 * std::sin(2 * ring + 1) +
                            0.4 * std::sin(3 * ring) + 0.25 * std::sin(5 * ring);
        const double whine = std::sin(2.73 * ring) + 0.5 * std::sin(5.46 * ring);
        return grip * (mesh + 0.25 * random.normal()) + 0.6 * spin * whine;
    }

private:
    double m_speed = 0;
    double m_turned = 0;
    Follower m_grip{0.008};
    Follower m_spin{0.12};
};

void fadeOut(Sound& sound) {
    const std::size_t tail = frames(0.3);
    for (std::size_t i = 0; i < tail; ++i)
        sound[sound.size() - 1 - i] *= static_cast<double>(i) / static_cast<double>(tail);
}

Sound makeTractor() {
    RandomGenerator random(45);
    Driver driver(random);
    Engine engine([&driver](std::size_t) { return driver.ignite(); });
    Exhaust exhaust;
    Intake intake;
    Block block;
    Starter starter;
    Biquad floor = Biquad::highPass(60);
    Sound sound(frames(length));
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const bool cranking = driver.starterOn(static_cast<double>(i) / sampleRate, engine.speed());
        engine.turn(1 / sampleRate, cranking);
        const double mix = 1.7 * exhaust.next(engine, random) + 0.5 * intake.next(engine, random) +
                           0.15 * block.next(engine, cranking, random) +
                           0.07 * starter.next(engine, cranking, random);
        // Overdriven, like a close recording.
        sound[i] = std::tanh(1.7 * floor.next(mix));
    }
    fadeOut(sound);
    return sound;
}

} // namespace
} // namespace quorvane::synthesis

int main(int argc, char** argv) {
    using namespace quorvane::synthesis;
    return writeSound(std::span(argv, static_cast<std::size_t>(argc)), makeTractor(), 0.8);
}
