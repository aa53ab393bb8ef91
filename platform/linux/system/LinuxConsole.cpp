#include "platform/linux/system/LinuxConsole.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr int longestWaitMilliseconds = 100;

/// What poll reports within the timeout, 0 if nothing.
int pollToWrite(int descriptor, int milliseconds) {
    pollfd state{.fd = descriptor, .events = POLLOUT, .revents = 0};
    poll(&state, 1, milliseconds);
    return state.revents;
}

bool hasReader(int descriptor) {
    return (pollToWrite(descriptor, 0) & (POLLERR | POLLHUP)) == 0;
}

void writeAll(int descriptor, std::string_view text) {
    while (!text.empty() && hasReader(descriptor)) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count >= 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (errno == EAGAIN ? pollToWrite(descriptor, longestWaitMilliseconds) == 0
                                 : errno != EINTR)
            return;
    }
}

} // namespace

LinuxConsole::LinuxConsole(int descriptor)
    : m_descriptor(fcntl(descriptor, F_GETFD) < 0 ? -1 : descriptor) {}

void LinuxConsole::print(std::string_view line) {
    if (m_descriptor < 0)
        return;
    writeAll(m_descriptor, std::string(line) + "\n");
}

} // namespace quorvane
