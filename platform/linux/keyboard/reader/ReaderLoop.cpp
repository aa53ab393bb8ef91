#include "platform/linux/keyboard/reader/ReaderLoop.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace quorvane {

namespace {

constexpr char open = 'o';
constexpr char close = 'c';
constexpr char key = 'k';

constexpr short ended = POLLERR | POLLHUP | POLLNVAL;

void makeNonBlocking(int descriptor) {
    const int flags = fcntl(descriptor, F_GETFL);
    if (flags < 0 || fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) < 0)
        throw std::system_error(errno, std::generic_category(), "standard streams");
}

} // namespace

ReaderLoop::ReaderLoop(int input, int output, Seats& seats, Keyboards& keyboards)
    : m_input(input), m_output(output), m_seats(seats), m_keyboards(keyboards) {
    makeNonBlocking(m_input);
    makeNonBlocking(m_output);
}

void ReaderLoop::run() {
    sendKeys(1);
    while (runOnce())
        ;
}

bool ReaderLoop::runOnce() {
    const auto polled = wait();
    if ((polled[Output].revents & ended) != 0)
        return false;
    const bool wasOn = m_isOn;
    if (polled[Input].revents != 0 && !readInput())
        return false;
    const bool isMoved = polled[FirstSeats].revents != 0 || polled[LastSeats].revents != 0;
    if (isMoved || m_isOn != wasOn || polled[Changes].revents != 0) {
        const auto seats = m_seats.update();
        m_keyboards.listenAt(m_isOn ? seats : std::set<std::string>());
    }
    sendKeys(m_keyboards.read());
    return true;
}

std::vector<pollfd> ReaderLoop::wait() const {
    const auto seats = m_seats.polled();
    std::vector<pollfd> polled{{.fd = m_input, .events = POLLIN, .revents = 0},
                               {.fd = m_output, .events = 0, .revents = 0},
                               {.fd = m_keyboards.changes(), .events = POLLIN, .revents = 0},
                               seats.front(),
                               seats.back()};
    m_keyboards.appendTo(polled);
    if (poll(polled.data(), polled.size(), -1) < 0 && errno != EINTR)
        throw std::system_error(errno, std::generic_category(), "poll");
    return polled;
}

/// False at its end.
bool ReaderLoop::readInput() {
    std::array<char, 64> bytes{};
    const ssize_t size = ::read(m_input, bytes.data(), bytes.size());
    if (size <= 0)
        return size < 0 && (errno == EAGAIN || errno == EINTR);
    for (ssize_t i = 0; i < size; ++i) {
        const char byte = bytes[static_cast<std::size_t>(i)];
        if (byte == open || byte == close)
            m_isOn = byte == open;
    }
    return true;
}

/// What does not fit is dropped. That the output has ended is seen when it is polled.
void ReaderLoop::sendKeys(std::size_t count) const {
    const std::string keys(count, key);
    if (count > 0 && ::write(m_output, keys.data(), keys.size()) < 0)
        return;
}

} // namespace quorvane
