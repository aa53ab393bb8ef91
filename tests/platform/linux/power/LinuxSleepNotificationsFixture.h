#pragma once

#include <QThread>
#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/linux/power/LinuxSleepNotifications.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/QtApplication.h"
#include "tests/support/SleepServices.h"
#include "tests/support/Waiting.h"

namespace quorvane {

// A message that is sent by mistake arrives within this time.
inline constexpr std::chrono::milliseconds quiet = 300ms;

/// Observes a workspace and records its notifications.
class Listener : NonCopyable {
public:
    /// A notification, and what is recorded when it comes.
    using Mark = std::pair<std::string_view, std::string>;

    Listener(NotificationCenter& center, const std::vector<Mark>& marks) : m_center(center) {
        for (const auto& [name, mark] : marks)
            m_tokens.push_back(observe(name, mark));
    }

    /// Observes the sleep and the wake of the screens.
    explicit Listener(NotificationCenter& center)
        : Listener(center, {{WorkspaceNotification::screensDidWake, "wake"},
                            {WorkspaceNotification::screensDidSleep, "sleep"}}) {}

    ~Listener() {
        for (const auto token : m_tokens)
            m_center.removeObserver(token);
    }

    /// Waits for `count` notifications; returns all that came.
    const std::vector<std::string>& heard(std::size_t count) {
        waitUntil([&] { return m_heard.size() >= count; });
        return m_heard;
    }

    /// Waits for `quiet`; returns all that came.
    const std::vector<std::string>& heardInAll() {
        waitFor(quiet);
        return m_heard;
    }

    [[nodiscard]] bool wasOnMainThreadOnly() const { return m_onMainThread; }

private:
    NotificationCenter::Token observe(std::string_view name, const std::string& mark) {
        return m_center.addObserver(name, [this, mark] {
            m_heard.push_back(mark);
            m_onMainThread = m_onMainThread && QThread::currentThread() == m_mainThread;
        });
    }

    NotificationCenter& m_center;
    std::vector<NotificationCenter::Token> m_tokens;
    std::vector<std::string> m_heard;
    QThread* m_mainThread = QThread::currentThread();
    bool m_onMainThread = true;
};

class LinuxSleepNotificationsTest : public testing::Test {
protected:
    std::string address() const { return m_bus.address(); }

    /// Waits until the workspace has read the state of the lid or of the displays.
    template <class Service>
    static void settle(const Service& service, int reads = 1) {
        ASSERT_TRUE(waitUntil([&] { return service.reads() >= reads; }));
    }

    QtApplication m_application;
    PrivateBus m_bus;
    PrivateBus m_session;
    LinuxSleepNotifications m_workspace{m_bus.address(), m_session.address()};
};

} // namespace quorvane
