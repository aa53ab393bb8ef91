#pragma once

#include <functional>

#include "base/NonCopyable.h"

namespace quorvane {

/// The serial queue whose blocks run on the main thread.
class MainQueue : NonCopyable {
public:
    virtual ~MainQueue() = default;

    /// Runs `block` on the main thread, soon and never from inside this call; blocks run in the
    /// order in which they were handed over. The only call that any thread may make.
    virtual void async(std::function<void()> block) = 0;

    /// Whether the caller is on the main thread. Any thread.
    [[nodiscard]] virtual bool isMainThread() const = 0;
};

} // namespace quorvane
