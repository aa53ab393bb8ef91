#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/FatalError.h"
#include "base/NonCopyable.h"

namespace quorvane {

/// The serial queue whose blocks run on the main thread.
class MainQueue : NonCopyable {
public:
    virtual ~MainQueue() = default;

    /// Runs `block` on the main thread, soon, in the order of the calls, and never before this call
    /// returns. Any thread.
    virtual void async(std::function<void()> block) = 0;

    /// Whether the caller is on the main thread. Any thread.
    [[nodiscard]] virtual bool isMainThread() const = 0;
};

/// Shares `object` so that it is destroyed on the main thread: when the last reference is dropped
/// on another thread, the deletion is queued. `queue` must outlive the object.
template <class T>
[[nodiscard]] std::shared_ptr<T> makeMainThreadOwned(MainQueue& queue, std::unique_ptr<T> object) {
    return std::shared_ptr<T>(object.release(), [&queue](T* last) {
        if (queue.isMainThread())
            delete last;
        else
            queue.async([last] { delete last; });
    });
}

/// For destructors that release timers and nodes: on any other thread, ends the program with an
/// error that names the class.
inline void requireMainThread(const MainQueue& queue, const char* className) {
    if (!queue.isMainThread())
        fatalError(std::string(className) + " must be destroyed on the main thread");
}

} // namespace quorvane
