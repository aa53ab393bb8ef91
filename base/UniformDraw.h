#pragma once

#include <bit>
#include <cstdint>
#include <limits>

namespace quorvane {

/// The upper bound of the draw that `uniformInRange` takes: up to 2^53, a double holds every whole
/// number.
inline constexpr std::uint64_t uniformDrawBound = std::uint64_t{1} << 53U;

/// Maps `r`, drawn from 0 to `uniformDrawBound` inclusive, linearly to `low` to `high`, both ends
/// included.
[[nodiscard]] constexpr double uniformInRange(std::uint64_t r, double low, double high) {
    return static_cast<double>(r) / static_cast<double>(uniformDrawBound) * (high - low) + low;
}

/// A whole number, uniform over 0 to `upperBound`, both included. `draw` returns 64 random bits.
template <typename Draw>
[[nodiscard]] std::uint64_t uniformUpTo(std::uint64_t upperBound, const Draw& draw) {
    // As many bits as the bound has, drawn again while they are too large: a remainder would favour
    // small numbers. At worst two draws on average.
    const int unused = std::countl_zero(upperBound | 1U);
    const std::uint64_t mask = std::numeric_limits<std::uint64_t>::max() >> unused;
    std::uint64_t value = 0;
    do {
        value = draw() & mask;
    } while (value > upperBound);
    return value;
}

} // namespace quorvane
