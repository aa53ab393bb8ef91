#pragma once

#include <QAbstractAnimation>
#include <QObject>
#include <QtQmlIntegration/qqmlintegration.h>

#include "app/screens/bridge/AnimatedNumber.h"
#include "base/Spring.h"

namespace quorvane {

/// A number on screen that follows a goal the way the goal asks for. The first goal is taken at
/// once, since there is nothing yet that could move; so is a goal whose animation is no spring. A
/// new goal on the way is headed for from where the number is, with the speed that it has. At rest
/// it asks for no frames.
class SpringValue : public QAbstractAnimation {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(
        quorvane::AnimatedNumber goal READ goal WRITE setGoal NOTIFY goalChanged REQUIRED FINAL)
    /// Where it is going to rest.
    Q_PROPERTY(double target READ target NOTIFY goalChanged FINAL)
    Q_PROPERTY(double value READ value NOTIFY valueChanged FINAL)
    /// Whether it is on its way.
    Q_PROPERTY(bool moving READ isMoving NOTIFY movingChanged FINAL)

public:
    using QAbstractAnimation::QAbstractAnimation;

    [[nodiscard]] AnimatedNumber goal() const { return m_goal; }

    void setGoal(const AnimatedNumber& goal);

    [[nodiscard]] double target() const { return m_goal.value.value; }

    [[nodiscard]] double value() const { return target() + m_current.displacement; }

    [[nodiscard]] bool isMoving() const { return state() == Running; }

    /// Unknown beforehand: it ends when it rests.
    [[nodiscard]] int duration() const override { return -1; }

signals:
    void goalChanged();
    void valueChanged();
    void movingChanged();

protected:
    void updateCurrentTime(int milliseconds) override;

    /// Not connected to stateChanged: the base's destructor emits that for one on its way.
    void updateState(State /*now*/, State /*before*/) override { emit movingChanged(); }

private:
    void jump();

    AnimatedNumber m_goal;
    bool m_hasGoal = false;
    Spring m_spring;
    // Relative to the goal: when the present goal was set, and now.
    SpringState m_initial;
    SpringState m_current;
};

} // namespace quorvane
