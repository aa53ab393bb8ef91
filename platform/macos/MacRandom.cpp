#include "platform/macos/MacRandom.h"

#include <cstdlib>

#include "base/UniformDraw.h"

namespace quorvane {

std::uint64_t MacRandom::uniform(std::uint64_t upperBound) {
    return uniformUpTo(upperBound, [] {
        std::uint64_t bits = 0;
        arc4random_buf(&bits, sizeof bits);
        return bits;
    });
}

} // namespace quorvane
