#include "platform/linux/overlays/LinuxScreens.h"

#include <QGuiApplication>
#include <optional>
#include <utility>

#include "platform/linux/overlays/X11Monitors.h"
#include "platform/linux/overlays/X11Overlays.h"
#include "platform/linux/overlays/X11Panel.h"

namespace quorvane {

namespace {

/// The monitor that was the main one when this was made, as it is now.
class MonitorScreen final : public Screen {
public:
    MonitorScreen(std::weak_ptr<X11Overlays> overlays, X11Monitor monitor)
        : m_overlays(std::move(overlays)), m_monitor(monitor) {}

    [[nodiscard]] Rect frame() const override {
        if (const auto overlays = m_overlays.lock())
            for (const X11Monitor& monitor : x11Monitors(overlays->connection()))
                if (monitor.name == m_monitor.name)
                    return monitor.frame();
        return m_monitor.frame();
    }

private:
    std::weak_ptr<X11Overlays> m_overlays;
    X11Monitor m_monitor;
};

} // namespace

LinuxScreens::LinuxScreens() = default;

LinuxScreens::~LinuxScreens() = default;

const std::shared_ptr<X11Overlays>& LinuxScreens::overlays() {
    // The watchdog ends a connection, and so do tools that end the client of a window.
    if (m_overlays && m_overlays->connection().isBroken())
        m_overlays.reset();
    if (!m_overlays && QGuiApplication::platformName() == QLatin1String("xcb"))
        if (auto connection = X11Connection::open())
            m_overlays = std::make_shared<X11Overlays>(std::move(connection));
    return m_overlays;
}

std::shared_ptr<Screen> LinuxScreens::mainScreen() {
    if (!overlays())
        return nullptr;
    const auto monitor = x11MainMonitor(m_overlays->connection());
    m_overlays->connection().settle();
    return monitor ? std::make_shared<MonitorScreen>(m_overlays, *monitor) : nullptr;
}

std::shared_ptr<OverlayPanel> LinuxScreens::createPanel(const Rect& contentRect,
                                                        unsigned /*styleMask*/,
                                                        unsigned /*backing*/, bool /*defer*/) {
    return std::make_shared<X11Panel>(overlays(), contentRect);
}

} // namespace quorvane
