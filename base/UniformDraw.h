#pragma once

#include <cstdint>

namespace quorvane {

/// A value of the closed range from `low` to `high` for a draw r that is uniform over 0 to
/// `uniformDrawBound`, both included: r / 2^53 of the way, so both ends can be reached.
inline constexpr std::uint64_t uniformDrawBound = std::uint64_t{1} << 53U;

[[nodiscard]] constexpr double uniformInRange(std::uint64_t r, double low, double high) {
    return static_cast<double>(r) / static_cast<double>(uniformDrawBound) * (high - low) + low;
}

} // namespace quorvane
