#include "platform/linux/overlays/X11Panel.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/linux/overlays/X11OverlayStack.h"

namespace quorvane {

namespace {

constexpr std::chrono::milliseconds spinnerInterval{83};

} // namespace

X11Panel::X11Panel(std::weak_ptr<X11OverlayStack> stack, const Rect& frame)
    : m_stack(std::move(stack)), m_frame(frame) {
    QObject::connect(&m_spin, &QTimer::timeout, &m_spin,
                     [this] { show({m_painter->turnSpinner()}); });
}

void X11Panel::setLevel(int level) {
    m_level = level;
    if (m_window)
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
    replaceWindow();
}

void X11Panel::orderFrontRegardless() {
    const auto stack = m_stack.lock();
    if (!stack)
        return;
    if (!m_window) {
        if (!X11OverlayWindow::isSupported(stack->connection()) || stack->isLocked())
            return;
        if (m_timeLimit > 0 &&
            !m_watchdog.emplace(stack->connection().socket(), m_timeLimit).isWatching())
            return;
        makeWindow(*stack);
    }
    stack->add(shared_from_this());
}

void X11Panel::orderOut() {
    removeWindow();
    if (const auto stack = m_stack.lock())
        stack->remove(*this);
    m_watchdog.reset();
}

void X11Panel::removeWindow() {
    m_changes.cancel();
    m_spin.stop();
    m_window.reset();
}

void X11Panel::expose(const QRect& part) {
    if (m_painter)
        show(m_painter->paint(part));
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
    if (!m_window || (now.pixels == m_monitor.pixels && now.scale == m_monitor.scale))
        return;
    m_monitor = now;
    m_frame = now.frame();
    if (m_view)
        m_painter.emplace(m_view, m_monitor.pixels.size(), m_monitor.scale);
    // Exposes all of it.
    m_window->moveTo(m_monitor.pixels);
}

void X11Panel::replaceWindow() {
    const auto stack = m_stack.lock();
    if (!stack || !m_window)
        return;
    makeWindow(*stack);
    stack->restack();
}

void X11Panel::makeWindow(X11OverlayStack& stack) {
    m_monitor = x11MonitorAt(stack.connection(), m_frame);
    std::vector<OverlayPicture> pictures;
    X11OverlayWindow::Look look{.pixels = m_monitor.pixels,
                                .layers = {m_background},
                                .opaque = m_opaque,
                                .takesClicks = !m_ignoresMouse,
                                .cursor = stack.arrow()};
    m_painter.reset();
    if (m_view) {
        look.layers.push_back(m_view->backLayer());
        m_painter.emplace(m_view, m_monitor.pixels.size(), m_monitor.scale);
        // Before there is a window, so that it appears with them.
        pictures = m_painter->paint(QRect({}, m_monitor.pixels.size()));
        m_changes = m_view->observeChanges([this] { show(m_painter->paintChanges()); });
        if (m_painter->hasSpinner())
            m_spin.start(spinnerInterval);
    }
    // One that is replaced is destroyed after the new one is mapped, so that nothing flashes up.
    m_window = std::make_unique<X11OverlayWindow>(stack.connection(), look);
    show(pictures);
}

void X11Panel::show(const std::vector<OverlayPicture>& pictures) const {
    for (const OverlayPicture& picture : pictures)
        m_window->show(picture.image, picture.corner);
    m_window->flush();
}

} // namespace quorvane
