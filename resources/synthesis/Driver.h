#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "resources/synthesis/RandomGenerator.h"

namespace quorvane::synthesis {

/// Simulates the person who starts a worn-out engine, and its fuel supply: when the starter runs,
/// and how much of each charge burns.
class Driver {
public:
    explicit Driver(RandomGenerator& random) : m_random(random) {}

    /// Whether the starter turns the engine at `time` (s); `speed` is the crank's, in radians a
    /// second.
    bool starterOn(double time, double speed) {
        m_time = time;
        m_speed = speed;
        if (m_attempt + 1 < attempts.size() && time >= attempts[m_attempt + 1].start) {
            ++m_attempt;
            m_compressions = 0;
            m_released = false;
        }
        const Attempt& attempt = attempts[m_attempt];
        m_released = m_released || speed > caught || time > attempt.start + attempt.patience;
        return time >= attempt.start && !m_released;
    }

    /// The share (0 to about 1) of a full charge that ignites. Called at the end of each
    /// compression.
    double ignite() {
        const Attempt& attempt = attempts[m_attempt];
        const int number = m_compressions++ - attempt.dead;
        if (number < 0 || number >= attempt.lit)
            return 0;
        double charge = attempt.charge * m_random.between(0.8, 1.1);
        if (attempt.runs && number > 2)
            charge = idle();
        if (m_time > fuelOut)
            charge *= std::max(0.0, 1 - (m_time - fuelOut) / chokes) * m_random.between(0.2, 1);
        return charge;
    }

private:
    /// One turn of the key: when and for how long at most (s), how many compressions pass before
    /// the first charge ignites, how many ignite, the share of each, and whether the engine then
    /// idles.
    struct Attempt {
        double start;
        double patience;
        int dead;
        int lit;
        double charge;
        bool runs;
    };

    static constexpr std::array<Attempt, 3> attempts{{{0.06, 2.0, 2, 2, 0.5, false},
                                                      {2.35, 2.0, 2, 2, 0.62, false},
                                                      {4.55, 2.0, 1, 1000, 0.95, true}}};
    /// The crank's speed (radians a second) at which the driver releases the key.
    static constexpr double caught = 21;
    /// When the fuel supply ends (s), and how long the rest lasts.
    static constexpr double fuelOut = 7.7;
    static constexpr double chokes = 1.1;

    /// A worn governor: charges for a speed of 33 radians a second, with much scatter; one in ten
    /// does not ignite.
    double idle() {
        constexpr double wanted = 33;
        if (m_random.uniform() < 0.1)
            return 0;
        return std::clamp((wanted - m_speed) / 12, 0.15, 0.9) * m_random.between(0.55, 1.35);
    }

    RandomGenerator& m_random;
    double m_time = 0;
    double m_speed = 0;
    std::size_t m_attempt = 0;
    int m_compressions = 0;
    bool m_released = false;
};

} // namespace quorvane::synthesis
