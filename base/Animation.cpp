#include "base/Animation.h"

#include <algorithm>
#include <cmath>

#include "base/Spring.h"

namespace quorvane {

namespace {

// The curve that interfaces call ease-in-out: a cubic Bezier curve from (0, 0) to (1, 1) with the
// control points (0.42, 0) and (0.58, 1); time runs along x, progress along y.
constexpr double firstControlX = 0.42;
constexpr double secondControlX = 0.58;

double bezier(double parameter, double first, double second) {
    const double rest = 1 - parameter;
    return 3 * rest * rest * parameter * first + 3 * rest * parameter * parameter * second +
           parameter * parameter * parameter;
}

double easeInOutAt(double time) {
    // x grows with the parameter, and this many halvings leave nothing that a double could show.
    constexpr int halvings = 50;
    double low = 0;
    double high = 1;
    for (int i = 0; i < halvings; ++i) {
        const double middle = (low + high) / 2;
        (bezier(middle, firstControlX, secondControlX) < time ? low : high) = middle;
    }
    return bezier((low + high) / 2, 0, 1);
}

// From 0 to 1 within one run, or for ever back and forth or anew.
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
