#include "platform/linux/power/LinuxSleepNotifications.h"

#include <utility>

#include "platform/linux/power/SleepSignals.h"

namespace quorvane {

LinuxSleepNotifications::LinuxSleepNotifications(std::string busAddress, std::string sessionAddress)
    : m_busAddress(std::move(busAddress)), m_sessionAddress(std::move(sessionAddress)) {}

LinuxSleepNotifications::~LinuxSleepNotifications() = default;

NotificationCenter::Token LinuxSleepNotifications::addObserver(std::string_view name,
                                                               std::function<void()> block) {
    const Token token = InProcessNotificationCenter::addObserver(name, std::move(block));
    listen();
    if (name != WorkspaceNotification::didWake)
        m_signals->listenToScreens();
    return token;
}

void LinuxSleepNotifications::removeObserver(Token token) {
    InProcessNotificationCenter::removeObserver(token);
    if (m_signals && observerCount() == 0)
        m_signals->stop();
}

void LinuxSleepNotifications::listen() {
    if (!m_signals)
        m_signals = std::make_unique<SleepSignals>(
            m_busAddress, m_sessionAddress,
            SleepSignals::Reports{
                .didWake = [this] { post(WorkspaceNotification::didWake); },
                .screens =
                    [this](bool asleep) {
                        post(asleep ? WorkspaceNotification::screensDidSleep
                                    : WorkspaceNotification::screensDidWake);
                    },
            });
    m_signals->start();
}

} // namespace quorvane
