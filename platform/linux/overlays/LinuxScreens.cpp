#include "platform/linux/overlays/LinuxScreens.h"

#include <optional>
#include <utility>

#include "platform/linux/overlays/SessionLock.h"
#include "platform/linux/overlays/X11Monitors.h"
#include "platform/linux/overlays/X11OverlayStack.h"
#include "platform/linux/overlays/X11Panel.h"

namespace quorvane {

namespace {

/// The monitor that was the main one at construction, with its current frame.
class MonitorScreen final : public Screen {
public:
    MonitorScreen(std::weak_ptr<X11OverlayStack> overlays, X11Monitor monitor)
        : m_stack(std::move(overlays)), m_monitor(monitor) {}

    [[nodiscard]] Rect frame() const override {
        if (const auto overlays = m_stack.lock())
            for (const X11Monitor& monitor : x11Monitors(overlays->connection()))
                if (monitor.name == m_monitor.name)
                    return monitor.frame();
        return m_monitor.frame();
    }

private:
    std::weak_ptr<X11OverlayStack> m_stack;
    X11Monitor m_monitor;
};

} // namespace

LinuxScreens::LinuxScreens() = default;

LinuxScreens::~LinuxScreens() = default;

const std::shared_ptr<X11OverlayStack>& LinuxScreens::overlays() {
    // The watchdog ends a connection, and so do tools that kill a window's client.
    if (m_stack && m_stack->connection().isBroken())
        m_stack.reset();
    if (!m_lock)
        m_lock = std::make_unique<SessionLock>([this] {
            if (m_stack)
                m_stack->hideWhileLocked();
        });
    if (!m_stack)
        if (auto connection = X11Connection::open())
            m_stack = std::make_shared<X11OverlayStack>(std::move(connection), *m_lock);
    return m_stack;
}

std::shared_ptr<Screen> LinuxScreens::mainScreen() {
    if (!overlays() || !X11OverlayWindow::isSupported(m_stack->connection()))
        return nullptr;
    const auto monitor = x11MainMonitor(m_stack->connection());
    m_stack->connection().settle();
    return monitor ? std::make_shared<MonitorScreen>(m_stack, *monitor) : nullptr;
}

std::string LinuxScreens::obstacle() {
    return overlays() ? "" : "X11 or Xwayland needed — enable it in your desktop's settings";
}

std::shared_ptr<OverlayPanel> LinuxScreens::createPanel(const Rect& contentRect,
                                                        unsigned /*styleMask*/,
                                                        unsigned /*backing*/, bool /*defer*/) {
    return std::make_shared<X11Panel>(overlays(), contentRect);
}

} // namespace quorvane
