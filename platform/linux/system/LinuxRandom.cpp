#include "platform/linux/system/LinuxRandom.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/random.h>

#include "base/UniformDraw.h"

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
    return uniformUpTo(upperBound, draw);
}

} // namespace quorvane
