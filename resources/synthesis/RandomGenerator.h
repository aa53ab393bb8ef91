#pragma once

#include <cmath>
#include <cstdint>
#include <random>

namespace quorvane::synthesis {

/// The same numbers with every standard library: the standard defines the engines to the bit, but
/// not the distributions.
class RandomGenerator {
public:
    explicit RandomGenerator(std::uint64_t seed) : m_engine(seed) {}

    /// Uniform, from 0 to below 1.
    double uniform() { return static_cast<double>(m_engine() >> 11U) * 0x1p-53; }

    double between(double low, double high) { return low + (high - low) * uniform(); }

    /// Approximately normal, of mean 0 and standard deviation 1: the sum of twelve uniform numbers.
    double normal() {
        double sum = -6;
        for (int i = 0; i < 12; ++i)
            sum += uniform();
        return sum;
    }

    /// Exponentially distributed, of mean `mean`.
    double exponential(double mean) { return -mean * std::log(1 - uniform()); }

    /// A power law from `low` to `high`: the density is proportional to x^-exponent.
    double power(double low, double high, double exponent) {
        const double rest = 1 - exponent;
        const double first = std::pow(low, rest);
        const double last = std::pow(high, rest);
        return std::pow(first + uniform() * (last - first), 1 / rest);
    }

private:
    std::mt19937_64 m_engine;
};

} // namespace quorvane::synthesis
