#pragma once

namespace quorvane {

/// How a displayed value moves to a new value. The controller chooses it; the code that draws
/// evaluates it for each frame.
struct Animation {
    enum class Curve { None, Spring, Linear, EaseInOut };

    Curve curve = Curve::None;
    /// Spring only: seconds of one undamped oscillation (angular frequency 2 pi / response) and the
    /// fraction of critical damping.
    double response = 0;
    double dampingFraction = 1;
    /// Linear and EaseInOut only: seconds from start to end.
    double duration = 0;
    bool repeatsForever = false;
    /// Whether every second repetition runs backwards.
    bool autoreverses = false;

    static constexpr Animation spring(double response, double dampingFraction) {
        return {.curve = Curve::Spring, .response = response, .dampingFraction = dampingFraction};
    }

    static constexpr Animation linear(double duration) {
        return {.curve = Curve::Linear, .duration = duration};
    }

    static constexpr Animation easeInOut(double duration) {
        return {.curve = Curve::EaseInOut, .duration = duration};
    }

    [[nodiscard]] constexpr Animation repeatForever(bool reversing) const {
        Animation result = *this;
        result.repeatsForever = true;
        result.autoreverses = reversing;
        return result;
    }

    /// Progress `seconds` (not negative) after the start: 0 is the old value, 1 the new one. A
    /// spring may overshoot. Curve::None: always 1.
    [[nodiscard]] double progress(double seconds) const;

    bool operator==(const Animation&) const = default;
};

/// A number, and the animation of its latest change.
struct AnimatedValue {
    double value = 0;
    Animation animation;

    bool operator==(const AnimatedValue&) const = default;
};

} // namespace quorvane
