#include "platform/linux/keyboard/reader/Seats.h"

#include <cstdlib>
#include <utility>

namespace quorvane {

namespace {

constexpr auto logind = "org.freedesktop.login1";
constexpr auto sessionInterface = "org.freedesktop.login1.Session";
constexpr auto sessionFolder = "/org/freedesktop/login1/session";
constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr auto sessionChanges =
    "type='signal',sender='org.freedesktop.login1',interface='org.freedesktop.DBus.Properties',"
    "member='PropertiesChanged',arg0='org.freedesktop.login1.Session'";

/// A string of the library, to be freed.
std::string take(char* text) {
    const std::unique_ptr<char, ReleasedBy<std::free>> owner(text);
    return text ? text : "";
}

/// A list of the library, to be freed.
std::set<std::string> take(int count, char** list) {
    std::set<std::string> texts;
    for (int i = 0; i < count; ++i)
        texts.insert(take(list[i]));
    std::free(static_cast<void*>(list)); // NOLINT(*-no-malloc): the library's allocation.
    return texts;
}

} // namespace

LogindSeats::LogindSeats(uid_t user, std::string systemBus)
    : m_user(user), m_address(std::move(systemBus)) {
    sd_login_monitor* monitor = nullptr;
    // Fails without logind; the user then counts as having no active session.
    if (sd_login_monitor_new("uid", &monitor) >= 0)
        m_monitor.reset(monitor);
}

std::array<pollfd, 2> LogindSeats::polled() const {
    std::array<pollfd, 2> polled{
        {{.fd = -1, .events = POLLIN, .revents = 0}, {.fd = -1, .events = 0, .revents = 0}}};
    if (m_monitor)
        polled[0].fd = sd_login_monitor_get_fd(m_monitor.get());
    if (m_bus) {
        polled[1].fd = sd_bus_get_fd(m_bus.get());
        polled[1].events = static_cast<short>(sd_bus_get_events(m_bus.get()));
    }
    return polled;
}

std::set<std::string> LogindSeats::update() {
    // Before the files are read, or a change in between would be missed.
    if (m_monitor)
        sd_login_monitor_flush(m_monitor.get());
    if (!m_bus)
        joinBus();
    findSessions();
    readBus();
    char** names = nullptr;
    const int count = sd_uid_get_seats(m_user, 1, &names);
    auto seats = take(count, names);
    std::erase_if(seats, [this](const std::string& seat) { return isLocked(seat); });
    return seats;
}

void LogindSeats::findSessions() {
    char** names = nullptr;
    const int count = sd_uid_get_sessions(m_user, -1, &names);
    const auto ids = take(count, names);
    std::erase_if(m_sessions, [&ids](const auto& entry) { return !ids.contains(entry.first); });
    for (const std::string& id : ids) {
        const auto [entry, isNew] = m_sessions.try_emplace(id);
        if (isNew)
            ask(id, entry->second);
    }
}

bool LogindSeats::isLocked(const std::string& seat) const {
    char* name = nullptr;
    sd_seat_get_active(seat.c_str(), &name, nullptr);
    const auto session = m_sessions.find(take(name));
    return session != m_sessions.end() && session->second.isLocked;
}

void LogindSeats::joinBus() {
    sd_bus* bus = nullptr;
    if (sd_bus_new(&bus) < 0)
        return;
    m_bus.reset(bus);
    if (sd_bus_set_address(bus, m_address.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
        sd_bus_start(bus) < 0 ||
        sd_bus_add_match_async(bus, nullptr, sessionChanges, &handleSignal, nullptr, this) < 0)
        leaveBus();
}

/// The bus is joined again at the next update, which the monitor or the program's input brings
/// about.
void LogindSeats::leaveBus() {
    m_sessions.clear();
    m_bus.reset();
}

void LogindSeats::readBus() {
    int result = 1;
    while (m_bus && result > 0)
        result = sd_bus_process(m_bus.get(), nullptr);
    if (result < 0)
        leaveBus();
}

void LogindSeats::ask(const std::string& id, Session& session) {
    char* path = nullptr;
    if (!m_bus || sd_bus_path_encode(sessionFolder, id.c_str(), &path) < 0)
        return;
    const std::unique_ptr<char, ReleasedBy<std::free>> owner(path);
    sd_bus_slot* question = nullptr;
    sd_bus_call_method_async(m_bus.get(), &question, logind, path, propertiesInterface, "Get",
                             &handleAnswer, &session, "ss", sessionInterface, "LockedHint");
    session.question.reset(question);
}

int LogindSeats::handleAnswer(sd_bus_message* answer, void* session, sd_bus_error* /*error*/) {
    int isLocked = 0;
    static_cast<Session*>(session)->isLocked =
        !sd_bus_message_is_method_error(answer, nullptr) &&
        sd_bus_message_read(answer, "v", "b", &isLocked) >= 0 && isLocked != 0;
    return 0;
}

/// What the signal says is not used, as any program on the bus can send one.
int LogindSeats::handleSignal(sd_bus_message* /*signal*/, void* seats, sd_bus_error* /*error*/) {
    auto* self = static_cast<LogindSeats*>(seats);
    for (auto& [id, session] : self->m_sessions)
        self->ask(id, session);
    return 0;
}

} // namespace quorvane
