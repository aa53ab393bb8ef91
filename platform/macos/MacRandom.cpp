#include "platform/macos/MacRandom.h"

#include <bit>
#include <cstdlib>
#include <limits>

namespace quorvane {

std::uint64_t MacRandom::uniform(std::uint64_t upperBound) {
    // As many bits as the bound has, drawn again while they are too large: a remainder would favour
    // small numbers.
    const int unused = std::countl_zero(upperBound | 1U);
    const std::uint64_t mask = std::numeric_limits<std::uint64_t>::max() >> unused;
    std::uint64_t value = 0;
    do {
        arc4random_buf(&value, sizeof value);
        value &= mask;
    } while (value > upperBound);
    return value;
}

} // namespace quorvane
