#pragma once

#include <thread>

namespace quorvane {

/// Removes a panel that is up for 2 s longer than it should be because the main thread hangs: a
/// thread shuts down the X connection of the panel's window, so that the server removes it, and
/// says so on standard error. The thread sleeps while the panel is up, and ends with this object.
class PanelWatchdog {
public:
    /// `socket`: of the connection; it has to stay open for as long as this object lives.
    /// `timeLimit`: seconds from now on after which the panel should be gone.
    PanelWatchdog(int socket, double timeLimit);

private:
    std::jthread m_thread;
};

} // namespace quorvane
