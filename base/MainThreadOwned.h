#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "base/MainQueue.h"

namespace quorvane {

/// Makes a `T` whose destruction happens on the main thread: when the last reference is dropped on
/// another thread, the deletion hops to the main queue, which must outlive the object. `T` derives
/// from std::enable_shared_from_this where its blocks hold it weakly.
template <class T, class... Arguments>
[[nodiscard]] std::shared_ptr<T> makeMainThreadOwned(MainQueue& queue, Arguments&&... arguments) {
    return std::shared_ptr<T>(new T(std::forward<Arguments>(arguments)...), [&queue](T* object) {
        if (queue.isMainThread())
            delete object;
        else
            queue.async([object] { delete object; });
    });
}

/// Called by destructors that are bound to the main thread: running anywhere else is a fatal error
/// that names the class, since the timers and nodes it releases are not safe to touch there.
inline void requireMainThread(const MainQueue& queue, const char* className) {
    if (queue.isMainThread())
        return;
    std::fprintf(stderr, "quorvane: fatal: %s must be destroyed on the main thread\n", className);
    std::abort();
}

} // namespace quorvane
