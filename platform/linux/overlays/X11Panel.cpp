#include "platform/linux/overlays/X11Panel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/overlays/X11OverlayStack.h"

namespace quorvane {

namespace {

bool isNear(const Rect& one, const Rect& other) {
    constexpr double half = 0.5;
    return std::abs(one.x - other.x) < half && std::abs(one.y - other.y) < half &&
           std::abs(one.width - other.width) < half && std::abs(one.height - other.height) < half;
}

QRect pixelsOf(const Rect& frame, double scale) {
    return {qRound(frame.x * scale), qRound(frame.y * scale), qRound(frame.width * scale),
            qRound(frame.height * scale)};
}

} // namespace

X11Panel::X11Panel(std::weak_ptr<X11OverlayStack> overlays, const Rect& frame)
    : m_stack(std::move(overlays)), m_frame(frame) {}

void X11Panel::setLevel(int level) {
    m_level = level;
    if (m_overlay)
        orderFrontRegardless();
}

void X11Panel::setOpaque(bool opaque) {
    m_opaque = opaque;
    replaceWindow();
}

void X11Panel::setBackgroundColor(const Color& color) {
    m_background = color;
    replaceWindow();
}

void X11Panel::setCollectionBehavior(unsigned /*behavior*/) {}

void X11Panel::setIgnoresMouseEvents(bool ignores) {
    m_ignoresMouse = ignores;
    replaceWindow();
}

void X11Panel::setContentView(std::shared_ptr<const OverlayView> view) {
    m_view = std::move(view);
    replaceWindow();
}

void X11Panel::setTimeLimit(double seconds) {
    m_timeLimit = seconds;
}

void X11Panel::setFrame(const Rect& frame, bool /*display*/) {
    m_frame = frame;
    const auto overlays = m_stack.lock();
    if (!overlays || !m_overlay)
        return;
    place(m_frame, x11Monitors(overlays->connection()));
    replaceWindow();
}

void X11Panel::orderFrontRegardless() {
    const auto overlays = m_stack.lock();
    if (!overlays)
        return;
    if (!m_overlay) {
        place(m_frame, x11Monitors(overlays->connection()));
        // Nothing can be drawn without a 24-bit visual.
        if (m_monitor.pixels.isEmpty() || overlays->connection().visual(24) == 0)
            return;
        if (m_timeLimit > 0)
            m_watchdog.emplace(overlays->connection().socket(), m_timeLimit);
        m_overlay = makeOverlay(*overlays);
    }
    overlays->add(shared_from_this());
}

void X11Panel::orderOut() {
    m_overlay.reset();
    if (const auto overlays = m_stack.lock())
        overlays->remove(*this);
    m_watchdog.reset();
}

const X11OverlayWindow* X11Panel::window() const {
    return m_overlay ? &m_overlay->window() : nullptr;
}

void X11Panel::expose(const QRect& part) const {
    if (m_overlay)
        m_overlay->show(part);
}

void X11Panel::follow(const std::vector<X11Monitor>& monitors,
                      const std::optional<X11Monitor>& main) {
    const auto own = std::find_if(monitors.begin(), monitors.end(), [this](const auto& monitor) {
        return monitor.name == m_monitor.name;
    });
    if (own == monitors.end() && !main) {
        orderOut();
        return;
    }
    const X11Monitor& now = own == monitors.end() ? *main : *own;
    if (now.pixels == m_monitor.pixels && now.scale == m_monitor.scale)
        return;
    m_monitor = now;
    m_frame = now.frame();
    replaceWindow();
}

void X11Panel::place(const Rect& frame, const std::vector<X11Monitor>& monitors) {
    const auto whole = std::find_if(monitors.begin(), monitors.end(), [&frame](const auto& each) {
        return isNear(each.frame(), frame);
    });
    if (whole != monitors.end()) {
        m_monitor = *whole;
        return;
    }
    m_monitor = {};
    if (!monitors.empty())
        m_monitor.scale = monitors.front().scale;
    m_monitor.pixels = pixelsOf(frame, m_monitor.scale);
}

void X11Panel::replaceWindow() {
    const auto overlays = m_stack.lock();
    if (!overlays || !m_overlay)
        return;
    // The new window is mapped before the old one is destroyed, so that nothing beneath flashes up.
    auto overlay = makeOverlay(*overlays);
    std::swap(m_overlay, overlay);
    overlays->restack();
    overlay.reset();
    overlays->connection().flush();
}

std::unique_ptr<X11OverlayContent> X11Panel::makeOverlay(X11OverlayStack& overlays) const {
    return std::make_unique<X11OverlayContent>(
        overlays.connection(), m_view,
        X11OverlayContent::Setting{
            .pixels = m_monitor.pixels,
            .scale = m_monitor.scale,
            .opaque = m_opaque,
            .background = m_background,
            .takesClicks = !m_ignoresMouse,
            .cursor = overlays.arrow(),
            // Kept from the panel's first window, since the panel itself covers it now.
            .beneath = m_overlay ? m_overlay->beneath() : QImage()});
}

} // namespace quorvane
