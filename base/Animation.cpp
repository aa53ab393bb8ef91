#include "base/Animation.h"

#include <algorithm>
#include <cmath>

#include "base/Spring.h"

namespace quorvane {

namespace {

// Ease-in-out as user interfaces define it: a cubic Bezier curve from (0, 0) to (1, 1) with the
// control points (0.42, 0) and (0.58, 1); x is time, y is progress.
constexpr double firstControlX = 0.42;
constexpr double secondControlX = 0.58;

double bezier(double parameter, double first, double second) {
    const double rest = 1 - parameter;
    return 3 * rest * rest * parameter * first + 3 * rest * parameter * parameter * second +
           parameter * parameter * parameter;
}

double easeInOutAt(double time) {
    // x grows with the parameter; 50 bisections reach the precision of a double.
    constexpr int halvings = 50;
    double low = 0;
    double high = 1;
    for (int i = 0; i < halvings; ++i) {
        const double middle = (low + high) / 2;
        (bezier(middle, firstControlX, secondControlX) < time ? low : high) = middle;
    }
    return bezier((low + high) / 2, 0, 1);
}

// 0 to 1, once or repeatedly.
double phase(const Animation& animation, double seconds) {
    const double runs = seconds / animation.duration;
    if (!animation.repeatsForever)
        return std::min(runs, 1.0);
    const double within = runs - std::floor(runs);
    const bool returning = animation.autoreverses && std::fmod(std::floor(runs), 2) == 1;
    return returning ? 1 - within : within;
}

} // namespace

double Animation::progress(double seconds) const {
    switch (curve) {
    case Curve::Linear:
        return phase(*this, seconds);
    case Curve::EaseInOut:
        return easeInOutAt(phase(*this, seconds));
    case Curve::Spring:
        return 1 + Spring{.response = response, .dampingFraction = dampingFraction}
                       .after(seconds, {.displacement = -1})
                       .displacement;
    case Curve::None:
        break;
    }
    return 1;
}

} // namespace quorvane
