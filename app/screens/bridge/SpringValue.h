#pragma once

#include <QAbstractAnimation>
#include <QObject>
#include <QtQmlIntegration/qqmlintegration.h>

#include "base/Animation.h"
#include "base/Spring.h"

namespace quorvane {

/// An AnimatedValue as a QML value type. QML only passes it on, to a SpringValue.
struct AnimatedNumber {
    Q_GADGET
    QML_VALUE_TYPE(animatedNumber)

public:
    AnimatedValue value;

    bool operator==(const AnimatedNumber&) const = default;
};

/// A number on screen that follows its goal with the goal's animation. The first goal, and one
/// whose animation is not a spring, is taken at once. A new goal while it moves is approached from
/// the current value and velocity. At rest it requests no frames.
class SpringValue : public QAbstractAnimation {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(
        quorvane::AnimatedNumber goal READ goal WRITE setGoal NOTIFY goalChanged REQUIRED FINAL)
    /// The goal's value.
    Q_PROPERTY(double target READ target NOTIFY goalChanged FINAL)
    Q_PROPERTY(double value READ value NOTIFY valueChanged FINAL)
    Q_PROPERTY(bool moving READ isMoving NOTIFY movingChanged FINAL)

public:
    using QAbstractAnimation::QAbstractAnimation;

    [[nodiscard]] AnimatedNumber goal() const { return m_goal; }

    void setGoal(const AnimatedNumber& goal);

    [[nodiscard]] double target() const { return m_goal.value.value; }

    [[nodiscard]] double value() const { return target() + m_current.displacement; }

    [[nodiscard]] bool isMoving() const { return state() == Running; }

    /// Unknown beforehand: it ends when the spring is at rest.
    [[nodiscard]] int duration() const override { return -1; }

signals:
    void goalChanged();
    void valueChanged();
    void movingChanged();

protected:
    void updateCurrentTime(int milliseconds) override;

    /// Not connected to stateChanged, which the base class's destructor emits too.
    void updateState(State /*now*/, State /*before*/) override { emit movingChanged(); }

private:
    void jump();

    AnimatedNumber m_goal;
    bool m_hasGoal = false;
    Spring m_spring;
    // Relative to the goal: when it was set, and now.
    SpringState m_initial;
    SpringState m_current;
};

} // namespace quorvane
