#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/NonCopyable.h"
#include "platform/linux/instance/InstanceLock.h"
#include "platform/linux/instance/SessionBus.h"

class QWindow;

namespace quorvane {

/// Makes a second start bring the first one's window to the front. The first one owns the name
/// org.quorvane.Quorvane on the session bus, where it offers org.freedesktop.Application, and an
/// InstanceLock, which counts where there is no bus. To be made before the QGuiApplication, which
/// would wait for a bus that does not answer: such a bus is removed from this process's
/// environment. The constructor takes 0.5 s at most. Main thread only.
class SingleInstance : NonCopyable {
public:
    enum class Kind {
        /// There is one for each user.
        Single,
        /// On a simulated machine: any number, beside that one.
        Simulated
    };

    explicit SingleInstance(Kind kind);

    /// Whether another one runs. Its window has been asked to come to the front.
    [[nodiscard]] bool isSecond() const { return m_isSecond; }

    /// What the user should know; empty: nothing.
    [[nodiscard]] const std::string& message() const { return m_message; }

    /// From now on the Qt event loop brings `window` to the front for a second start, and calls
    /// `stop` when asked to end. Does nothing without a bus.
    void serve(QWindow& window, std::function<void()> stop);

    /// Uses neither any more.
    void ignore() { m_readable.reset(); }

private:
    void takeName();
    void takeLock();
    [[nodiscard]] bool wakeFirst();
    void read();
    int handle(sd_bus_message* call);

    SessionBus m_bus;
    std::optional<InstanceLock> m_lock;
    std::unique_ptr<QSocketNotifier> m_readable;
    QWindow* m_window = nullptr;
    std::function<void()> m_stop;
    std::string m_message;
    bool m_isSecond = false;
};

} // namespace quorvane
