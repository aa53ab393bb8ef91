#pragma once

#include <functional>
#include <memory>

#include "base/Animation.h"
#include "base/NonCopyable.h"
#include "base/Observable.h"
#include "platform/RunLoop.h"

namespace quorvane {

/// Where a value of the controller is on its way along an animation that never ends. It is
/// evaluated 30 times a second, which is enough for a slow glow and half of what a display could
/// show, and only while somebody is looking. Main thread only.
class LoopingValue : NonCopyable {
public:
    /// `source` and `runLoop` outlive it. `changed` is told of each new value.
    LoopingValue(const Observable<AnimatedValue>& source, RunLoop& runLoop,
                 std::function<void()> changed);
    ~LoopingValue();

    /// Where it was last seen.
    [[nodiscard]] double get() const { return m_value; }

    /// Whether somebody is looking. Its time passes all the same.
    void setSeen(bool seen);
    /// A value that is to rest rests where it was set.
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
