#include "platform/linux/system/LinuxRandom.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <sys/random.h>

#include "base/FatalError.h"
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
    fatalError("LinuxRandom: no random numbers: " + std::string(std::strerror(errno)));
}

} // namespace

std::uint64_t LinuxRandom::uniform(std::uint64_t upperBound) {
    return uniformUpTo(upperBound, draw);
}

} // namespace quorvane
