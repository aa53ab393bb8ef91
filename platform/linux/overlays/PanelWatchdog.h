#pragma once

#include <stop_token>
#include <thread>

#include "base/NonCopyable.h"

namespace quorvane {

/// Removes a panel that is up for 2 s longer than it should be because the main thread hangs: a
/// thread shuts down the X connection of the panel's window, so that the server removes it, and
/// says so on standard error. The thread sleeps while the panel is up, and ends with this object.
class PanelWatchdog : NonCopyable {
public:
    /// `socket`: of the connection; it has to stay open for as long as this object lives.
    /// `timeLimit`: seconds from now on after which the panel should be gone.
    PanelWatchdog(int socket, double timeLimit);
    ~PanelWatchdog();

    /// False if no thread could be started, which is said on standard error.
    [[nodiscard]] bool isWatching() const { return m_thread.joinable(); }

private:
    std::stop_source m_stop;
    std::thread m_thread;
};

} // namespace quorvane
