#include "platform/linux/system/LinuxRandom.h"

#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sys/random.h>

namespace quorvane {

namespace {

std::uint64_t draw() {
    std::uint64_t bits = 0;
    ssize_t count = -1;
    // getrandom() returns so few bytes whole or not at all.
    do {
        count = getrandom(&bits, sizeof bits, 0);
    } while (count < 0 && errno == EINTR);
    if (count == static_cast<ssize_t>(sizeof bits))
        return bits;
    std::fprintf(stderr, "quorvane: fatal: no random numbers: %s\n", std::strerror(errno));
    std::abort();
}

} // namespace

std::uint64_t LinuxRandom::uniform(std::uint64_t upperBound) {
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
