#pragma once

#include <functional>
#include <memory>

#include "base/Animation.h"
#include "base/NonCopyable.h"
#include "base/Observable.h"
#include "platform/RunLoop.h"

namespace quorvane {

/// The value on screen of an AnimatedValue whose animation is endless. Evaluated 30 times a second,
/// enough for a slow glow, and only while it is visible. Main thread only.
class LoopingValue : NonCopyable {
public:
    /// `source` and `runLoop` outlive it. `changed` is called after each new value.
    LoopingValue(const Observable<AnimatedValue>& source, RunLoop& runLoop,
                 std::function<void()> changed);
    ~LoopingValue();

    /// The value as of the last update.
    [[nodiscard]] double get() const { return m_value; }

    /// Whether it is visible, initially false. While it is not, the animation's time goes on.
    void setSeen(bool seen);
    /// At rest, `get` is the source's value, without animation. Initially false.
    void setAtRest(bool atRest);

private:
    void begin();
    void update();
    void updateTimer();

    const Observable<AnimatedValue>& m_source;
    RunLoop& m_runLoop;
    std::function<void()> m_changed;
    double m_value;
    double m_from;
    double m_begun;
    bool m_seen = false;
    bool m_atRest = false;
    std::shared_ptr<Timer> m_timer;
    Subscription m_followed;
};

} // namespace quorvane
