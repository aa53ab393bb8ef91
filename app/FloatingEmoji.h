#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "platform/System.h"

namespace quorvane {

/// One faint particle that rises behind the warning screen and the control panel.
struct FloatingEmoji {
    /// What every particle shows.
    static constexpr const char* glyph = "😭";

    /// Identity: the upper and the lower half of a random UUID (version 4). Never changes.
    std::pair<std::uint64_t, std::uint64_t> id;
    /// Centre in points; y grows downward.
    double x = 0;
    double y = 0;
    /// Font size in points; never changes.
    double size = 0;
    /// 0 to 1.
    double opacity = 0;
    /// Points per second, upward.
    double speed = 0;
    /// Points per second, sideways; negative is leftward.
    double drift = 0;

    bool operator==(const FloatingEmoji&) const = default;

    /// `count` new particles, scattered over the area. A negative count is a programming error and
    /// ends the program.
    [[nodiscard]] static std::vector<FloatingEmoji> generate(int count, Random& random);

    /// Moves the particle by 1/20 s of its speeds, whatever the real time since the last step. One
    /// that has left at the top re-enters at the bottom with a new x, drift, speed and opacity.
    void step(Random& random);
};

} // namespace quorvane
