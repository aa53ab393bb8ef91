#include "platform/linux/overlays/SessionLock.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "platform/linux/common/BusConnection.h"

namespace quorvane {

namespace {

const QString logind = QStringLiteral("org.freedesktop.login1");
// The session of this process or, where it has none, the user's graphical one.
const QString ownSession = QStringLiteral("/org/freedesktop/login1/session/auto");
const QString logindSession = QStringLiteral("org.freedesktop.login1.Session");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

// Names of services and of their interfaces; with slashes for dots, their objects' paths.
constexpr auto screenSavers = {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                               "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver",
                               "org.xfce.ScreenSaver"};

/// Whether the reply is true, as a boolean or as a property's value. An error is not.
bool isTrue(const QDBusMessage& reply) {
    QVariant value = reply.arguments().value(0);
    if (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.typeId() == QMetaType::Bool && value.toBool();
}

} // namespace

/// A signal from any object of any sender.
struct SessionLock::Signal {
    QString interface;
    QString name;
    /// What its first arguments have to be.
    QStringList arguments;
};

/// One of the services that know whether the session is locked. It is asked at first, when it comes
/// or goes, and at each of its signals: what a signal says is not used, as any client can send one,
/// and logind sends them for all sessions.
class SessionLock::Service : NonCopyable {
public:
    Service(QDBusConnection bus, const QDBusMessage& question, const Signal& signal,
            std::function<void()> answered)
        : m_bus(std::move(bus)), m_question(question), m_answered(std::move(answered)),
          m_owner(m_question.service(), m_bus, QDBusServiceWatcher::WatchForOwnerChange) {
        m_question.setAutoStartService(false);
        m_ask.setSingleShot(true);
        QObject::connect(&m_ask, &QTimer::timeout, &m_ask, [this] { ask(); });
        QObject::connect(&m_owner, &QDBusServiceWatcher::serviceOwnerChanged, &m_ask,
                         qOverload<>(&QTimer::start));
        askAfter(signal);
        // The library's own signal at the end of the connection: from then on there is no answer.
        askAfter({.interface = QStringLiteral("org.freedesktop.DBus.Local"),
                  .name = QStringLiteral("Disconnected"),
                  .arguments = {}});
        m_ask.start();
    }

    [[nodiscard]] bool saysLocked() const { return m_locked; }

private:
    void askAfter(const Signal& signal) {
        // No sender is given: QtDBus would block on asking the bus for its owner.
        m_bus.connect({}, {}, signal.interface, signal.name, signal.arguments, {}, &m_ask,
                      SLOT(start()));
    }

    void ask() {
        // The answer to an earlier question is dropped.
        m_answer = std::make_unique<QDBusPendingCallWatcher>(m_bus.asyncCall(m_question));
        QObject::connect(m_answer.get(), &QDBusPendingCallWatcher::finished, m_answer.get(),
                         [this] {
                             m_locked = isTrue(m_answer->reply());
                             m_answered();
                         });
    }

    QDBusConnection m_bus;
    QDBusMessage m_question;
    std::function<void()> m_answered;
    bool m_locked = false;
    QDBusServiceWatcher m_owner;
    QTimer m_ask;
    std::unique_ptr<QDBusPendingCallWatcher> m_answer;
};

SessionLock::SessionLock(std::function<void()> changed, const Addresses& addresses)
    : m_changed(std::move(changed)) {
    m_system = std::make_unique<BusConnection>(
        QDBusConnection::SystemBus, addresses.system,
        [this, address = addresses.session](const QDBusConnection& bus) {
            askLogind(bus);
            // One after the other: while QtDBus waits for a bus to answer, it blocks the
            // destruction of what listens to another.
            m_session = std::make_unique<BusConnection>(
                QDBusConnection::SessionBus, address,
                [this](const QDBusConnection& sessionBus) { askScreenSavers(sessionBus); });
        });
}

SessionLock::~SessionLock() = default;

void SessionLock::askLogind(const QDBusConnection& bus) {
    auto question = QDBusMessage::createMethodCall(logind, ownSession, propertiesInterface,
                                                   QStringLiteral("Get"));
    question << logindSession << QStringLiteral("LockedHint");
    ask(bus, question,
        {.interface = propertiesInterface,
         .name = QStringLiteral("PropertiesChanged"),
         .arguments = {logindSession}});
}

void SessionLock::askScreenSavers(const QDBusConnection& bus) {
    for (const QString name : screenSavers)
        ask(bus,
            QDBusMessage::createMethodCall(name, QString('/' + name).replace('.', '/'), name,
                                           QStringLiteral("GetActive")),
            {.interface = name, .name = QStringLiteral("ActiveChanged"), .arguments = {}});
}

void SessionLock::ask(const QDBusConnection& bus, const QDBusMessage& question,
                      const Signal& signal) {
    if (bus.isConnected())
        m_services.push_back(
            std::make_unique<Service>(bus, question, signal, [this] { update(); }));
}

void SessionLock::update() {
    const bool locked = std::any_of(m_services.begin(), m_services.end(),
                                    [](const auto& service) { return service->saysLocked(); });
    if (std::exchange(m_locked, locked) != locked)
        m_changed();
}

} // namespace quorvane
