#pragma once

#include <cstdint>

namespace quorvane {

/// The upper bound of the draw that `uniformInRange` takes: up to 2^53, a double holds every whole
/// number.
inline constexpr std::uint64_t uniformDrawBound = std::uint64_t{1} << 53U;

/// Maps `r`, drawn from 0 to `uniformDrawBound` inclusive, linearly to `low` to `high`, both ends
/// included.
[[nodiscard]] constexpr double uniformInRange(std::uint64_t r, double low, double high) {
    return static_cast<double>(r) / static_cast<double>(uniformDrawBound) * (high - low) + low;
}

} // namespace quorvane
