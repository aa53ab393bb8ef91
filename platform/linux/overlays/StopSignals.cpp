#include "platform/linux/overlays/StopSignals.h"

#include <sys/socket.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

namespace quorvane {

namespace {

// The last two come to a program in the background that uses its terminal.
constexpr std::array stopSignals{SIGTSTP, SIGTTIN, SIGTTOU};
constexpr int none = -1;

// A handler may read it at any moment.
std::atomic<int> watchedSocket{none};
static_assert(std::atomic<int>::is_always_lock_free);

void stopWithoutPanels(int signal);

void listenFor(int signal) {
    struct sigaction action {};

    // One that the program was started to ignore stays ignored.
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
        return;
    action.sa_handler = stopWithoutPanels;
    // The handler itself sends the signal once more, for the system's own action.
    action.sa_flags = SA_RESTART | SA_NODEFER | SA_RESETHAND;
    sigaction(signal, &action, nullptr);
}

void stopWithoutPanels(int signal) {
    const int error = errno;
    shutdown(watchedSocket, SHUT_RDWR);
    // Stops here, and goes on from here at SIGCONT.
    std::raise(signal);
    listenFor(signal);
    errno = error;
}

} // namespace

StopSignals::StopSignals(int socket) {
    watchedSocket = socket;
    for (const int signal : stopSignals)
        listenFor(signal);
}

StopSignals::~StopSignals() {
    // Without a socket the handler does what the system does by itself.
    watchedSocket = none;
}

} // namespace quorvane
