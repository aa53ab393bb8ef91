#include "platform/linux/overlays/SessionLock.h"

#include <algorithm>
#include <utility>

#include "platform/linux/common/BusConnection.h"
#include "platform/linux/common/BusMessage.h"

namespace quorvane {

namespace {

constexpr auto logind = "org.freedesktop.login1";
// The session of this process or, where it has none, the user's graphical one.
constexpr auto ownSession = "/org/freedesktop/login1/session/auto";
constexpr auto logindSession = "org.freedesktop.login1.Session";
constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";
// Of any object of logind.
constexpr auto logindSignals =
    "type='signal',sender='org.freedesktop.login1',interface='org.freedesktop.DBus.Properties',"
    "member='PropertiesChanged',arg0='org.freedesktop.login1.Session'";

// Names of services and of their interfaces; with slashes for dots, their objects' paths.
constexpr auto screenSavers = {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                               "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver",
                               "org.xfce.ScreenSaver"};

} // namespace

/// One of the services that know whether the session is locked. It is asked at first, when it comes
/// or goes, and at each of its signals: what a signal says is not used, as logind sends them for
/// all sessions.
class SessionLock::Service : NonCopyable {
public:
    /// `signalRule`: as for BusConnection::listen.
    Service(BusConnection& bus, BusConnection::Call question, const std::string& signalRule,
            std::function<void()> answered)
        : m_bus(bus), m_question(std::move(question)), m_answered(std::move(answered)) {
        m_bus.watch(m_question.service, [this](bool) { ask(); });
        m_bus.listen(signalRule, [this](sd_bus_message&) { ask(); });
        ask();
    }

    [[nodiscard]] bool saysLocked() const { return m_locked; }

private:
    void ask() {
        m_bus.ask(m_question, [this, number = ++m_asked](sd_bus_message& answer) {
            // The answer to an earlier question is dropped.
            if (number != m_asked)
                return;
            const BusValue value = readValue(answer);
            const auto* locked = std::get_if<bool>(&value);
            m_locked = locked && *locked;
            m_answered();
        });
    }

    BusConnection& m_bus;
    BusConnection::Call m_question;
    std::function<void()> m_answered;
    bool m_locked = false;
    unsigned m_asked = 0;
};

SessionLock::SessionLock(std::function<void()> changed, const Addresses& addresses)
    : m_changed(std::move(changed)),
      m_system(std::make_unique<BusConnection>(
          BusConnection::Kind::System, addresses.system, [this] { askLogind(); },
          [this] { leave(m_systemServices); })),
      m_session(std::make_unique<BusConnection>(
          BusConnection::Kind::Session, addresses.session, [this] { askScreenSavers(); },
          [this] { leave(m_sessionServices); })) {}

SessionLock::~SessionLock() = default;

void SessionLock::askLogind() {
    m_systemServices.push_back(
        std::make_unique<Service>(*m_system,
                                  BusConnection::Call{.service = logind,
                                                      .path = ownSession,
                                                      .interface = propertiesInterface,
                                                      .method = "Get",
                                                      .arguments = {logindSession, "LockedHint"}},
                                  logindSignals, [this] { update(); }));
}

void SessionLock::askScreenSavers() {
    for (const std::string name : screenSavers) {
        std::string path = '/' + name;
        std::replace(path.begin(), path.end(), '.', '/');
        m_sessionServices.push_back(std::make_unique<Service>(
            *m_session,
            BusConnection::Call{.service = name,
                                .path = path,
                                .interface = name,
                                .method = "GetActive",
                                .arguments = {}},
            "type='signal',sender='" + name + "',member='ActiveChanged'", [this] { update(); }));
    }
}

void SessionLock::leave(Services& services) {
    services.clear();
    update();
}

void SessionLock::update() {
    const auto anyLocked = [](const Services& services) {
        return std::any_of(services.begin(), services.end(),
                           [](const auto& service) { return service->saysLocked(); });
    };
    const bool locked = anyLocked(m_systemServices) || anyLocked(m_sessionServices);
    if (std::exchange(m_locked, locked) != locked)
        m_changed();
}

} // namespace quorvane
