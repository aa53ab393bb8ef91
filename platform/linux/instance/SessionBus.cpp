#include "platform/linux/instance/SessionBus.h"

#include <cerrno>
#include <cstdint>
#include <limits>
#include <poll.h>

#include <QByteArray>

namespace quorvane {

namespace {

using namespace std::chrono_literals;

std::string busAddress() {
    std::string address = qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString();
    const std::string folder = qgetenv("XDG_RUNTIME_DIR").toStdString();
    if (!address.empty() || folder.empty())
        return address;
    return "unix:path=" + folder + "/bus";
}

int keepAnswer(sd_bus_message* answer, void* place, sd_bus_error* /*error*/) {
    static_cast<BusMessage*>(place)->reset(sd_bus_message_ref(answer));
    return 0;
}

} // namespace

SessionBus::SessionBus(std::chrono::milliseconds patience)
    : m_deadline(std::chrono::steady_clock::now() + patience) {
    const std::string address = busAddress();
    sd_bus* bus = nullptr;
    if (address.empty() || sd_bus_new(&bus) < 0)
        return;
    m_bus.reset(bus);
    int result = sd_bus_set_address(bus, address.c_str());
    if (result >= 0)
        result = sd_bus_set_bus_client(bus, 1);
    if (result >= 0)
        result = sd_bus_start(bus);
    while (result >= 0 && sd_bus_is_ready(bus) == 0)
        result = advance();
    // EAGAIN: it has long stopped accepting connections.
    if (result < 0)
        leave(result == -ETIMEDOUT || result == -EAGAIN);
}

BusMessage SessionBus::newCall(const char* service, const char* path, const char* interface,
                               const char* member) const {
    sd_bus_message* made = nullptr;
    if (!isOpen() ||
        sd_bus_message_new_method_call(get(), &made, service, path, interface, member) < 0)
        return nullptr;
    BusMessage message(made);
    sd_bus_message_set_auto_start(made, 0);
    return message;
}

BusMessage SessionBus::ask(const BusMessage& call) {
    BusMessage answer;
    if (!isOpen() || !call)
        return answer;
    sd_bus_slot* made = nullptr;
    constexpr auto noTimeout = std::numeric_limits<std::uint64_t>::max();
    int result = sd_bus_call_async(get(), &made, call.get(), &keepAnswer, &answer, noTimeout);
    const std::unique_ptr<sd_bus_slot, ReleasedBy<sd_bus_slot_unref>> question(made);
    while (result >= 0 && !answer)
        result = advance();
    if (result < 0 && result != -ETIMEDOUT)
        leave(false);
    return answer;
}

bool SessionBus::process() const {
    int result = isOpen() ? 1 : 0;
    while (result > 0)
        result = sd_bus_process(get(), nullptr);
    return isOpen() && result == 0;
}

/// Handles what has arrived, or waits for more. Below 0 an error's number, ETIMEDOUT at the
/// deadline.
int SessionBus::advance() {
    const auto left = m_deadline - std::chrono::steady_clock::now();
    if (left <= 0s)
        return -ETIMEDOUT;
    const int result = sd_bus_process(get(), nullptr);
    if (result != 0)
        return result;
    pollfd polled{.fd = sd_bus_get_fd(get()),
                  .events = static_cast<short>(sd_bus_get_events(get())),
                  .revents = 0};
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(left);
    return poll(&polled, 1, static_cast<int>(wait.count())) < 0 && errno != EINTR ? -errno : 0;
}

void SessionBus::leave(bool isHung) {
    m_isHung = isHung;
    m_bus.reset();
}

unsigned numberIn(const BusMessage& answer) {
    std::uint32_t number = 0;
    if (!answer || sd_bus_message_is_method_error(answer.get(), nullptr) != 0 ||
        sd_bus_message_read(answer.get(), "u", &number) < 0)
        return 0;
    return number;
}

} // namespace quorvane
