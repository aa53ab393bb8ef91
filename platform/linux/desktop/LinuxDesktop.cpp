#include "platform/linux/desktop/LinuxDesktop.h"

#include <QGuiApplication>

#include "platform/linux/desktop/ReducedMotion.h"
#include "platform/linux/desktop/X11ObscuredWindowWatcher.h"

namespace quorvane {

LinuxDesktop::LinuxDesktop() = default;
LinuxDesktop::~LinuxDesktop() = default;

void LinuxDesktop::watchWindow(std::uintptr_t window) {
    if (!m_motion)
        m_motion = std::make_unique<ReducedMotion>(m_reducesMotion);
    // `winId()` is an X11 id only on xcb.
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        m_cover = std::make_unique<X11ObscuredWindowWatcher>(
            static_cast<xcb_window_t>(window), [this](bool covered) { m_isCovered = covered; });
}

} // namespace quorvane
