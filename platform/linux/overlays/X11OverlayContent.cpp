#include "platform/linux/overlays/X11OverlayContent.h"

#include <chrono>
#include <utility>

namespace quorvane {

namespace {

constexpr int opaqueDepth = 24;
constexpr int blendedDepth = 32;
constexpr std::chrono::milliseconds spinnerInterval{83};

} // namespace

X11OverlayContent::X11OverlayContent(X11Connection& connection,
                                     std::shared_ptr<const OverlayView> view, Setting setting)
    : m_connection(connection), m_view(std::move(view)), m_setting(std::move(setting)),
      m_blended(!m_setting.opaque && connection.visual(blendedDepth) != 0 &&
                connection.composites()),
      m_image(connection, m_setting.pixels.size(),
              m_blended ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32) {
    if (!m_setting.opaque && !m_blended && m_setting.beneath.isNull())
        captureBeneath();
    drawAll();
    m_window.emplace(connection,
                     X11OverlayWindow::Look{.pixels = m_setting.pixels,
                                            .depth = m_blended ? blendedDepth : opaqueDepth,
                                            .background = m_setting.background,
                                            .takesClicks = m_setting.takesClicks,
                                            .cursor = m_setting.cursor});
    show(m_image.image().rect());
    followChanges();
}

void X11OverlayContent::captureBeneath() {
    if (!m_image.capture(m_setting.pixels.topLeft()))
        m_image.image().fill(Qt::white);
    m_setting.beneath = m_image.image().copy();
}

void X11OverlayContent::drawAll() {
    QImage& image = m_image.image();
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        if (!m_setting.beneath.isNull())
            painter.drawImage(image.rect(), m_setting.beneath);
        painter.fillRect(image.rect(), toolkitColor(m_setting.background));
    }
    if (!m_view)
        return;
    m_painted.emplace(m_view, m_setting.scale);
    m_painted->drawAll(image);
}

void X11OverlayContent::followChanges() {
    if (!m_view)
        return;
    m_changes = m_view->observeChanges([this] { drawChanges(); });
    if (!m_painted->spins())
        return;
    QObject::connect(&m_spin, &QTimer::timeout, &m_spin, [this] {
        m_painted->turnSpinner();
        drawChanges();
    });
    m_spin.start(spinnerInterval);
}

void X11OverlayContent::drawChanges() {
    const QRegion changed = m_painted->drawChanges(m_image.image());
    if (changed.isEmpty())
        return;
    for (const QRect& part : changed)
        m_window->show(m_image, part);
    m_connection.flush();
}

void X11OverlayContent::show(const QRect& part) {
    m_window->show(m_image, part);
    m_connection.flush();
}

} // namespace quorvane
