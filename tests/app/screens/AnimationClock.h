#pragma once

#include <QAbstractAnimation>
#include <QAnimationDriver>
#include <QCoreApplication>

#include "base/NonCopyable.h"

namespace quorvane {

/// The time of all animations of this process, which passes only as it is told to. Nothing that is
/// shown then depends on how fast the machine draws, and no test waits for an animation.
class AnimationClock final : public QAnimationDriver, NonCopyable {
public:
    AnimationClock() {
        install();
        m_endless.start();
        // The little real time that this has taken belongs to no other animation.
        pass(0);
    }

    ~AnimationClock() override {
        m_endless.stop();
        uninstall();
    }

    void pass(int milliseconds) {
        // An animation that was started begins to move by two events, one after the other.
        QCoreApplication::sendPostedEvents();
        m_elapsed += milliseconds;
        advance();
    }

    [[nodiscard]] qint64 elapsed() const override { return m_elapsed; }

protected:
    void start() override {
        m_elapsed = 0;
        QAnimationDriver::start();
    }

private:
    // Without anything that moves, Qt would wait for QML's timers in real time.
    class Endless final : public QAbstractAnimation {
    public:
        [[nodiscard]] int duration() const override { return -1; }

    protected:
        void updateCurrentTime(int /*milliseconds*/) override {}
    };

    qint64 m_elapsed = 0;
    Endless m_endless;
};

} // namespace quorvane
