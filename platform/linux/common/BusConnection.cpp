#include "platform/linux/common/BusConnection.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <poll.h>
#include <utility>

#include <QPointer>

namespace quorvane {

namespace {

using std::chrono::milliseconds;

// A bus that restarts is back soon.
constexpr milliseconds firstAttempt{1000};
constexpr milliseconds attemptInterval{5000};

/// Begins to connect.
int openAt(const std::string& address, sd_bus** bus) {
    int result = sd_bus_new(bus);
    if (result >= 0)
        result = sd_bus_set_address(*bus, address.c_str());
    if (result >= 0)
        result = sd_bus_set_bus_client(*bus, 1);
    return result < 0 ? result : sd_bus_start(*bus);
}

/// The time until `instant`, in microseconds on the monotonic clock.
milliseconds timeUntil(std::uint64_t instant) {
    using std::chrono::microseconds;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto left = microseconds(instant) - std::chrono::floor<microseconds>(now);
    return std::max(std::chrono::ceil<milliseconds>(left), milliseconds(0));
}

} // namespace

/// What the library calls; deleted with the library's slot.
struct BusConnection::Subscription {
    // Null once the connection object is gone.
    QPointer<QTimer> connection;
    Handler handler;

    static int handle(sd_bus_message* message, void* subscription, sd_bus_error* /*error*/) {
        const auto* self = static_cast<const Subscription*>(subscription);
        if (self->connection)
            self->handler(*message);
        return 0;
    }
};

BusConnection::BusConnection(Kind kind, std::string address, std::function<void()> joined,
                             std::function<void()> left)
    : m_kind(kind), m_address(std::move(address)), m_joined(std::move(joined)),
      m_left(std::move(left)) {
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        if (m_bus)
            process();
        else
            open();
    });
    open();
}

BusConnection::~BusConnection() = default;

void BusConnection::open() {
    sd_bus* bus = nullptr;
    int result = 0;
    if (!m_address.empty())
        result = openAt(m_address, &bus);
    else
        result = m_kind == Kind::System ? sd_bus_open_system(&bus) : sd_bus_open_user(&bus);
    m_bus.reset(bus);
    if (result < 0)
        leave();
    else
        update();
}

void BusConnection::process() {
    const QPointer<QTimer> alive(&m_timer);
    int result = 1;
    while (result > 0) {
        result = sd_bus_process(m_bus.get(), nullptr);
        if (alive && !m_isJoined && sd_bus_is_ready(m_bus.get()) > 0) {
            m_isJoined = true;
            m_joined();
        }
        if (!alive)
            return;
    }
    if (result < 0)
        leave();
    else
        update();
}

void BusConnection::leave() {
    m_readable.reset();
    m_writable.reset();
    m_bus.reset();
    const bool wasJoined = std::exchange(m_isJoined, false);
    m_timer.start(wasJoined ? firstAttempt : attemptInterval);
    // A copy, as it may destroy this object.
    if (const auto left = m_left; wasJoined)
        left();
}

/// Has the event loop wait for what the library waits for.
void BusConnection::update() {
    const int descriptor = sd_bus_get_fd(m_bus.get());
    // An address can name several sockets, which are tried one after the other.
    if (!m_readable || m_readable->socket() != descriptor) {
        m_readable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
        m_writable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
        for (const auto* notifier : {m_readable.get(), m_writable.get()})
            QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                             [this] { process(); });
    }
    const int events = sd_bus_get_events(m_bus.get());
    m_readable->setEnabled(events >= 0 && (events & POLLIN) != 0);
    m_writable->setEnabled(events >= 0 && (events & POLLOUT) != 0);
    std::uint64_t due = 0;
    if (sd_bus_get_timeout(m_bus.get(), &due) >= 0 && due != UINT64_MAX)
        m_timer.start(timeUntil(due));
    else
        m_timer.stop();
}

void BusConnection::listen(const std::string& rule, Handler handler) {
    if (!m_isJoined)
        return;
    auto subscription = std::make_unique<Subscription>(
        Subscription{.connection = &m_timer, .handler = std::move(handler)});
    sd_bus_slot* slot = nullptr;
    if (sd_bus_add_match_async(m_bus.get(), &slot, rule.c_str(), &Subscription::handle, nullptr,
                               subscription.get()) >= 0)
        keep(slot, std::move(subscription));
}

void BusConnection::watch(const std::string& service, std::function<void(bool)> changed) {
    listen("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
           "member='NameOwnerChanged',arg0='" +
               service + "'",
           [changed = std::move(changed)](sd_bus_message& message) {
               const char* owner = nullptr;
               if (sd_bus_message_read(&message, "sss", nullptr, nullptr, &owner) >= 0)
                   changed(*owner != '\0');
           });
}

void BusConnection::ask(const Call& call, Handler answered) {
    sd_bus_message* question = nullptr;
    if (!m_isJoined || sd_bus_message_new_method_call(m_bus.get(), &question, call.service.c_str(),
                                                      call.path.c_str(), call.interface.c_str(),
                                                      call.method.c_str()) < 0)
        return;
    const std::unique_ptr<sd_bus_message, ReleasedBy<sd_bus_message_unref>> owner(question);
    sd_bus_message_set_auto_start(question, call.startsService ? 1 : 0);
    for (const std::string& argument : call.arguments)
        sd_bus_message_append_basic(question, 's', argument.c_str());
    auto subscription = std::make_unique<Subscription>(
        Subscription{.connection = &m_timer, .handler = std::move(answered)});
    sd_bus_slot* slot = nullptr;
    if (sd_bus_call_async(m_bus.get(), &slot, question, &Subscription::handle, subscription.get(),
                          0) >= 0)
        keep(slot, std::move(subscription));
}

/// Until the answer has come, or until the connection is lost.
void BusConnection::keep(sd_bus_slot* slot, std::unique_ptr<Subscription> subscription) {
    const std::unique_ptr<sd_bus_slot, ReleasedBy<sd_bus_slot_unref>> owner(slot);
    sd_bus_slot_set_destroy_callback(slot,
                                     [](void* kept) { delete static_cast<Subscription*>(kept); });
    static_cast<void>(subscription.release());
    sd_bus_slot_set_floating(slot, 1);
    update();
}

} // namespace quorvane
