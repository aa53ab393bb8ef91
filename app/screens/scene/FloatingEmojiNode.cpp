#include "app/screens/scene/FloatingEmojiNode.h"

#include <QGuiApplication>
#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>

#include <cmath>
#include <utility>

#include "app/screens/scene/OpaqueBounds.h"

namespace quorvane {

namespace {

// In the display's own pixels. A picture that moves within a cell of so many has the same bounds
// before and after, which are one rectangle to draw anew. Those of two places would be three, and
// every one of them makes all the others dearer where the processor draws.
constexpr int cell = 8;

// Wide enough for the glyph, in points.
double sideOf(const FloatingEmoji& particle) {
    return std::ceil(particle.size * 1.3);
}

// The glyph in the middle of its square, with a cell around it.
QImage drawGlyph(const FloatingEmoji& particle, double scale) {
    const double side = sideOf(particle);
    const int pixels = static_cast<int>(std::lround(side * scale)) + 2 * cell;
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QFont font = QGuiApplication::font();
    font.setPixelSize(static_cast<int>(std::lround(particle.size)));
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.translate(cell / scale, cell / scale);
    painter.drawText(QRectF(0, 0, side, side), Qt::AlignCenter, FloatingEmoji::glyph);
    return image;
}

QImage faded(const QImage& picture, double opacity) {
    QImage image(picture.size(), picture.format());
    image.setDevicePixelRatio(picture.devicePixelRatio());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(opacity);
    painter.drawImage(0, 0, picture);
    return image;
}

} // namespace

/// One particle's. Its opacity is the picture's own, so that the pictures of all of them can be
/// drawn in one go.
class FloatingEmojiNode::Picture {
public:
    Picture(QQuickWindow& window, const FloatingEmoji& particle)
        : m_window(window), m_scale(window.effectiveDevicePixelRatio()),
          m_glyph(drawGlyph(particle, m_scale)), m_node(window.createImageNode()) {
        if (const QRect seen = opaqueBounds(m_glyph); !seen.isEmpty()) {
            m_glyph = m_glyph.copy(seen.adjusted(-cell, -cell, cell, cell));
            m_offset = seen.topLeft() - QPoint(cell, cell);
        }
        m_node->setOwnsTexture(true);
        // What lies on whole pixels takes no filter to draw, which is most of the cost of a picture
        // where the processor draws.
        m_node->setFiltering(QSGTexture::Nearest);
        show(particle);
    }

    [[nodiscard]] QSGNode* node() const { return m_node; }

    void show(const FloatingEmoji& particle) {
        if (std::exchange(m_opacity, particle.opacity) != particle.opacity)
            m_node->setTexture(m_window.createTextureFromImage(faded(m_glyph, particle.opacity),
                                                               QQuickWindow::TextureCanUseAtlas));
        const auto place = [&](double centre) {
            return static_cast<int>(std::lround((centre - sideOf(particle) / 2) * m_scale));
        };
        const QPoint corner = QPoint(place(particle.x), place(particle.y)) + m_offset;
        // A power of two, and so right for negative places too.
        const QPoint within(corner.x() & (cell - 1), corner.y() & (cell - 1));
        const QSizeF size(m_glyph.width() - cell, m_glyph.height() - cell);
        m_node->setRect(QRectF(QPointF(corner - within) / m_scale, size / m_scale));
        m_node->setSourceRect(QRectF(QPoint(cell, cell) - within, size));
    }

private:
    QQuickWindow& m_window;
    double m_scale;
    QImage m_glyph;
    QPoint m_offset; // Of the glyph in its square, in pixels.
    double m_opacity = -1;
    QSGImageNode* m_node; // The scene's, as a child.
};

FloatingEmojiNode::FloatingEmojiNode(QQuickWindow& window, const Particles& particles,
                                     std::shared_ptr<RenderMailbox<Particles>> newer)
    : m_newer(std::move(newer)) {
    setFlag(UsePreprocess);
    m_pictures.reserve(particles.size());
    for (const FloatingEmoji& particle : particles)
        appendChildNode(m_pictures.emplace_back(window, particle).node());
}

FloatingEmojiNode::~FloatingEmojiNode() = default;

void FloatingEmojiNode::show(const Particles& particles) {
    auto particle = particles.begin();
    for (Picture& picture : m_pictures)
        picture.show(*particle++);
}

void FloatingEmojiNode::preprocess() {
    if (const auto particles = m_newer->take())
        show(*particles);
}

} // namespace quorvane
