#include "platform/linux/system/LinuxConsole.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <unistd.h>

#include "base/NonCopyable.h"

namespace quorvane {

namespace {

constexpr int longestWaitMilliseconds = 100;

/// Holds SIGPIPE off the calling thread, and swallows one that came meanwhile. The process keeps
/// its own way with the signal, which child processes inherit.
class BrokenPipeShield : NonCopyable {
public:
    BrokenPipeShield() {
        sigset_t pending{};
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        sigemptyset(&m_brokenPipe);
        sigaddset(&m_brokenPipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_brokenPipe, &m_before);
    }

    ~BrokenPipeShield() {
        const timespec noTime{};
        while (!m_wasPending && sigtimedwait(&m_brokenPipe, nullptr, &noTime) < 0 &&
               errno == EINTR) {
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

private:
    sigset_t m_brokenPipe{};
    sigset_t m_before{};
    bool m_wasPending = false;
};

bool waitForRoom(int descriptor) {
    pollfd waiting{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return poll(&waiting, 1, longestWaitMilliseconds) > 0;
}

void writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count >= 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (errno == EAGAIN ? !waitForRoom(descriptor) : errno != EINTR)
            return;
    }
}

} // namespace

LinuxConsole::LinuxConsole(int descriptor)
    : m_descriptor(fcntl(descriptor, F_GETFD) < 0 ? -1 : descriptor) {}

void LinuxConsole::print(std::string_view line) {
    if (m_descriptor < 0)
        return;
    const BrokenPipeShield shield;
    writeAll(m_descriptor, std::string(line) + "\n");
}

} // namespace quorvane
