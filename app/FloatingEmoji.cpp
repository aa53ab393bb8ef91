#include "app/FloatingEmoji.h"

#include <limits>
#include <string>

#include "base/FatalError.h"
#include "base/UniformDraw.h"

namespace quorvane {

namespace {

struct Range {
    double low;
    double high;
};

// Points, points per second, opacity. The field is close to the window's size but not derived
// from it.
constexpr Range xRange{.low = 0, .high = 500};
constexpr Range yRange{.low = -100, .high = 700};
constexpr Range sizeRange{.low = 40, .high = 60};
constexpr Range opacityRange{.low = 0.08, .high = 0.2};
constexpr Range speedRange{.low = 15, .high = 40};
constexpr Range driftRange{.low = -30, .high = 30};

constexpr double stepSeconds = 0.05;
constexpr double topEdge = -80;
constexpr double bottomEdge = 700;

double draw(Random& random, const Range& range) {
    return uniformInRange(random.uniform(uniformDrawBound), range.low, range.high);
}

// Sets the version, 4, and the variant, binary 10, in otherwise random bits.
std::pair<std::uint64_t, std::uint64_t> drawUUID(Random& random) {
    constexpr auto anyBits = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t upper = random.uniform(anyBits);
    const std::uint64_t lower = random.uniform(anyBits);
    return {(upper & 0xFFFF'FFFF'FFFF'0FFF) | 0x4000,
            (lower & 0x3FFF'FFFF'FFFF'FFFF) | 0x8000'0000'0000'0000};
}

FloatingEmoji makeEmoji(Random& random) {
    FloatingEmoji emoji;
    emoji.id = drawUUID(random);
    emoji.x = draw(random, xRange);
    emoji.y = draw(random, yRange);
    emoji.size = draw(random, sizeRange);
    emoji.opacity = draw(random, opacityRange);
    emoji.speed = draw(random, speedRange);
    emoji.drift = draw(random, driftRange);
    return emoji;
}

} // namespace

std::vector<FloatingEmoji> FloatingEmoji::generate(int count, Random& random) {
    if (count < 0)
        fatalError("FloatingEmoji: a count of " + std::to_string(count));
    std::vector<FloatingEmoji> emojis;
    emojis.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        emojis.push_back(makeEmoji(random));
    return emojis;
}

void FloatingEmoji::step(Random& random) {
    y -= speed * stepSeconds;
    x += drift * stepSeconds;
    if (y >= topEdge)
        return;
    y = bottomEdge;
    x = draw(random, xRange);
    drift = draw(random, driftRange);
    speed = draw(random, speedRange);
    opacity = draw(random, opacityRange);
}

} // namespace quorvane
