#include "platform/linux/common/BusConnection.h"

#include <atomic>
#include <memory>
#include <optional>
#include <utility>

namespace quorvane {

namespace {

// Milliseconds; a healthy bus takes one or two.
constexpr unsigned long longestWait = 500;

QDBusConnection open(QDBusConnection::BusType type, const QString& address) {
    static std::atomic<int> count = 0;
    const QString name = QStringLiteral("quorvane-%1").arg(++count);
    QDBusConnection bus = address.isEmpty() ? QDBusConnection::connectToBus(type, name)
                                            : QDBusConnection::connectToBus(address, name);
    // Only frees the name: to look a connection up by it waits for any that is being opened.
    QDBusConnection::disconnectFromBus(name);
    return bus;
}

} // namespace

BusConnection::BusConnection(QDBusConnection::BusType type, const std::string& address,
                             std::function<void(const QDBusConnection&)> opened) {
    const auto bus = std::make_shared<std::optional<QDBusConnection>>();
    m_thread = QThread::create(
        [bus, type, address = QString::fromStdString(address)] { *bus = open(type, address); });
    QObject::connect(m_thread, &QThread::finished, &m_context,
                     [bus, opened = std::move(opened)] { opened(**bus); });
    QObject::connect(m_thread, &QThread::finished, m_thread, &QObject::deleteLater);
    m_thread->start();
}

BusConnection::~BusConnection() {
    // A thread that is still connecting at exit would use Qt after its teardown. On a bus that
    // never answers it stays blocked, and ends with the process.
    if (m_thread && m_thread->wait(longestWait))
        delete m_thread;
}

} // namespace quorvane
