#pragma once

#include <QAnimationDriver>

namespace quorvane {

/// The time of all animations of this process, which passes only as it is told to. Nothing that is
/// shown then depends on how fast the machine draws, and no test waits for an animation.
class AnimationClock final : public QAnimationDriver {
public:
    AnimationClock() { install(); }

    AnimationClock(const AnimationClock&) = delete;
    AnimationClock& operator=(const AnimationClock&) = delete;

    ~AnimationClock() override { uninstall(); }

    void pass(int milliseconds) {
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
    qint64 m_elapsed = 0;
};

} // namespace quorvane
