#include "platform/linux/overlays/StopSignals.h"

#include <sys/socket.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

namespace quorvane {

namespace {

// A background program that uses its terminal gets one of the last two.
constexpr std::array stopSignals{SIGTSTP, SIGTTIN, SIGTTOU};
constexpr int none = -1;

// The signal handler reads it.
std::atomic<int> watchedSocket{none};
static_assert(std::atomic<int>::is_always_lock_free);

void stopWithoutPanels(int signal);

void listenFor(int signal) {
    struct sigaction action {};

    // One that the program was started to ignore stays ignored.
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
        return;
    action.sa_handler = stopWithoutPanels;
    // The handler raises the signal again, for the default action.
    action.sa_flags = SA_RESTART | SA_NODEFER | SA_RESETHAND;
    sigaction(signal, &action, nullptr);
}

void stopWithoutPanels(int signal) {
    const int error = errno;
    shutdown(watchedSocket, SHUT_RDWR);
    // The process stops here and continues here on SIGCONT.
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
    // Without a socket the handler does no more than the default action.
    watchedSocket = none;
}

} // namespace quorvane
