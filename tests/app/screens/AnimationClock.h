#pragma once

#include <QAbstractAnimation>
#include <QAnimationDriver>
#include <QCoreApplication>

#include "base/NonCopyable.h"

namespace quorvane {

/// The clock of all animations of this process, which only pass() advances: what is shown does not
/// depend on the machine's speed, and no test waits for an animation.
class AnimationClock final : public QAnimationDriver, NonCopyable {
public:
    AnimationClock() {
        install();
        m_endless.start();
        // Uses up the real time that has passed until now.
        pass(0);
    }

    ~AnimationClock() override {
        m_endless.stop();
        uninstall();
    }

    void pass(int milliseconds) {
        // An animation that was started begins to run after two queued events.
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
    // While no animation runs, Qt runs QML's timers in real time.
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
