#include "platform/linux/overlays/PanelWatchdog.h"

#include <sys/socket.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/posix/StandardError.h"
#include "platform/posix/Threads.h"

namespace quorvane {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds patience{2000};
// After the machine or the process was suspended both threads are late. The main thread then has
// this long to remove the panel itself.
constexpr milliseconds grace{500};

/// False if a stop was requested first.
bool sleepUntil(Clock::time_point time, const std::stop_token& stop) {
    std::mutex mutex;
    std::condition_variable_any wake;
    std::unique_lock lock(mutex);
    wake.wait_until(lock, stop, time, [] { return false; });
    return !stop.stop_requested();
}

void watch(const std::stop_token& stop, int socket, Clock::time_point due) {
    if (!sleepUntil(due + patience - grace, stop) || !sleepUntil(Clock::now() + grace, stop))
        return;
    // The only safe call on the connection from here: the main thread may be inside xcb.
    shutdown(socket, SHUT_RDWR);
    printError("the main thread hangs: removed a panel that was overdue");
}

} // namespace

PanelWatchdog::PanelWatchdog(int socket, double timeLimit)
    : m_thread(startThread("panel watchdog",
                           [socket, stop = m_stop.get_token(),
                            due = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                                     std::chrono::duration<double>(timeLimit))] {
                               watch(stop, socket, due);
                           })) {}

PanelWatchdog::~PanelWatchdog() {
    m_stop.request_stop();
    if (m_thread.joinable())
        m_thread.join();
}

} // namespace quorvane
