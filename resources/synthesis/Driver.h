#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "resources/synthesis/RandomGenerator.h"

namespace quorvane::synthesis {

/// Starts a worn-out engine: when the key is turned, and how much of each charge lights.
class Driver {
public:
    explicit Driver(RandomGenerator& random) : m_random(random) {}

    /// True while the starter's pinion is in the ring, at this time (s) and speed of the crank.
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

    /// The share of a full charge that lights at the end of a compression.
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
    /// One turn of the key: when, for how long at most, how many compressions pass before a charge
    /// lights, how many light, how much of each, and whether it runs on.
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
    /// The crank's speed (radians a second) at which it seems to run by itself.
    static constexpr double caught = 21;
    /// When the fuel ends (s), and how long the rest of it lasts.
    static constexpr double fuelOut = 7.7;
    static constexpr double chokes = 1.1;

    /// A worn governor: charges that scatter about what the speed asks for, and some that miss.
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
