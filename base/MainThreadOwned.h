#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "base/MainQueue.h"

namespace quorvane {

/// Shares `object` so that its destruction happens on the main thread: when the last reference is
/// dropped on another thread, the deletion hops to the main queue, which must outlive the object.
template <class T>
[[nodiscard]] std::shared_ptr<T> makeMainThreadOwned(MainQueue& queue, std::unique_ptr<T> object) {
    return std::shared_ptr<T>(object.release(), [&queue](T* last) {
        if (queue.isMainThread())
            delete last;
        else
            queue.async([last] { delete last; });
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
