#pragma once

namespace quorvane {

/// How a value on its way to the screen moves from where it is shown to where it was set. The
/// controller only says what is wanted; whoever draws evaluates it frame by frame.
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
    /// Whether a repetition runs back instead of starting over.
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

    /// How much of the way has been gone `seconds` (not negative) after the start: 0 at the start,
    /// 1 where the value was set. A spring may overshoot; no animation is there at once.
    [[nodiscard]] double progress(double seconds) const;

    bool operator==(const Animation&) const = default;
};

/// A number and the animation with which it was last set.
struct AnimatedValue {
    double value = 0;
    Animation animation;

    bool operator==(const AnimatedValue&) const = default;
};

} // namespace quorvane
