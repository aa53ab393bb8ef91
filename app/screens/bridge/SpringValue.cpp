#include "app/screens/bridge/SpringValue.h"

namespace quorvane {

namespace {

// Half a step of 8-bit opacity, and less than a sixth of a pixel of the scaled warning sign.
constexpr double restTolerance = 0.002;

} // namespace

void SpringValue::setGoal(const AnimatedNumber& goal) {
    if (m_hasGoal && goal == m_goal)
        return;
    const double shown = value();
    const bool first = !std::exchange(m_hasGoal, true);
    m_goal = goal;
    const Animation& animation = goal.value.animation;
    stop();
    if (first || animation.curve != Animation::Curve::Spring) {
        jump();
    } else {
        m_spring = {.response = animation.response, .dampingFraction = animation.dampingFraction};
        m_initial = {.displacement = shown - goal.value.value, .velocity = m_current.velocity};
        m_current = m_initial;
        start();
    }
    emit goalChanged();
}

void SpringValue::jump() {
    m_current = {};
    emit valueChanged();
}

void SpringValue::updateCurrentTime(int milliseconds) {
    if (!isMoving())
        return;
    m_current = m_spring.after(milliseconds / 1000.0, m_initial);
    if (m_spring.isAtRest(m_current, restTolerance)) {
        stop();
        jump();
        return;
    }
    emit valueChanged();
}

} // namespace quorvane
