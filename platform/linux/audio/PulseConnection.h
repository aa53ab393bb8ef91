#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <pulse/pulseaudio.h>

#include "base/NonCopyable.h"
#include "platform/linux/common/FileDescriptor.h"

namespace quorvane {

/// A main loop of libpulse and the connection to the sound server. Used on one thread, except for
/// `wake`.
class PulseConnection : NonCopyable {
public:
    using Clock = std::chrono::steady_clock;

    enum class State { None, Connecting, Connected };

    PulseConnection();
    ~PulseConnection();

    /// False if there were too few file descriptors; then nothing else may be called but `wake` and
    /// `disconnect`.
    [[nodiscard]] bool isUsable() const { return m_loop && m_wake; }

    /// Begins to connect; where the server is started on demand, that may take a while.
    void connect();

    void disconnect() { m_context.reset(); }

    [[nodiscard]] State state() const;

    /// While connected.
    [[nodiscard]] pa_context& context() const { return *m_context; }

    /// Whether the server may already have read more than it says: PipeWire reads on another thread
    /// than the one that answers.
    [[nodiscard]] bool readsUnnoticed() const { return m_isPipeWire; }

    /// Waits for events of the server, for `wake`, or until `deadline`, and calls callbacks.
    void iterate(std::optional<Clock::time_point> deadline);
    /// Ends an `iterate`, or the next one; from any thread.
    void wake() const;

    /// Whether a server's socket was made since the last call.
    [[nodiscard]] bool takeServerAppeared() { return std::exchange(m_serverAppeared, false); }

private:
    struct FreeLoop {
        void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
    };

    struct CloseContext {
        void operator()(pa_context* context) const;
    };

    void identifyServer();
    void watchSocket();
    void readSocketEvents();

    std::unique_ptr<pa_mainloop, FreeLoop> m_loop;
    std::unique_ptr<pa_context, CloseContext> m_context;
    FileDescriptor m_wake;
    FileDescriptor m_inotify;
    std::string m_socketName;
    bool m_serverAppeared = false;
    bool m_isPipeWire = false;
};

} // namespace quorvane
