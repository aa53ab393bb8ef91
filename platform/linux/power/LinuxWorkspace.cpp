#include "platform/linux/power/LinuxWorkspace.h"

#include <utility>

#include "platform/linux/power/SleepSignals.h"

namespace quorvane {

LinuxWorkspace::LinuxWorkspace(std::string busAddress) : m_busAddress(std::move(busAddress)) {}

LinuxWorkspace::~LinuxWorkspace() = default;

NotificationCenter::Token LinuxWorkspace::addObserver(std::string_view name,
                                                      std::function<void()> block) {
    const Token token = InProcessNotificationCenter::addObserver(name, std::move(block));
    listen();
    if (name != WorkspaceNotification::didWake)
        m_signals->listenToLid();
    return token;
}

void LinuxWorkspace::removeObserver(Token token) {
    InProcessNotificationCenter::removeObserver(token);
    if (m_signals && observerCount() == 0)
        m_signals->stop();
}

void LinuxWorkspace::listen() {
    if (!m_signals)
        m_signals = std::make_unique<SleepSignals>(
            QString::fromStdString(m_busAddress),
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
