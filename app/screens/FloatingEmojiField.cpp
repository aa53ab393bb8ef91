#include "app/screens/FloatingEmojiField.h"

#include <QGuiApplication>
#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>

#include <cmath>
#include <utility>

namespace quorvane {

namespace {

// The glyph at `size` in the middle of a square that is large enough for it.
QImage drawGlyph(double size, double scale) {
    const double side = std::ceil(size * 1.3);
    QImage image((QSizeF(side, side) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QFont font = QGuiApplication::font();
    font.setPixelSize(static_cast<int>(std::lround(size)));
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRectF(0, 0, side, side), Qt::AlignCenter, FloatingEmoji::glyph);
    return image;
}

/// One particle's part of the scene.
class ParticleNode final : public QSGOpacityNode {
public:
    ParticleNode(QQuickWindow& window, double size, double scale) : m_scale(scale) {
        const QImage picture = drawGlyph(size, scale);
        m_side = picture.deviceIndependentSize().width();
        m_image = window.createImageNode();
        m_image->setOwnsTexture(true);
        m_image->setTexture(window.createTextureFromImage(picture));
        m_image->setFiltering(QSGTexture::Nearest);
        appendChildNode(m_image);
    }

    void show(const FloatingEmoji& particle) {
        setOpacity(particle.opacity);
        m_image->setRect(onPixel(particle.x - m_side / 2), onPixel(particle.y - m_side / 2), m_side,
                         m_side);
    }

private:
    // A picture that lies on whole pixels takes no filter to draw, which is most of the cost of one
    // where the processor draws.
    [[nodiscard]] double onPixel(double place) const {
        return std::round(place * m_scale) / m_scale;
    }

    double m_scale;
    QSGImageNode* m_image; // The scene's, as a child.
    double m_side;
};

} // namespace

FloatingEmojiField::FloatingEmojiField(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

void FloatingEmojiField::setContent(ContentViewModel* content) {
    if (m_content == content)
        return;
    if (m_content)
        m_content->disconnect(this);
    m_content = content;
    if (m_content) {
        connect(m_content, &ContentViewModel::particlesMoved, this,
                &FloatingEmojiField::takeParticles);
        takeParticles();
    }
    emit contentChanged();
}

void FloatingEmojiField::takeParticles() {
    m_particles = m_content->particles();
    update();
}

void FloatingEmojiField::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change != ItemDevicePixelRatioHasChanged)
        return;
    m_scaleChanged = true;
    update();
}

QSGNode* FloatingEmojiField::updatePaintNode(QSGNode* old, UpdatePaintNodeData* /*data*/) {
    if (std::exchange(m_scaleChanged, false)) {
        delete old;
        old = nullptr;
    }
    // The software renderer loses the place of an opacity that changes right below any other node.
    QSGNode* node = old ? old : new QSGTransformNode;
    if (!old) {
        for (const FloatingEmoji& particle : m_particles)
            node->appendChildNode(
                new ParticleNode(*window(), particle.size, window()->effectiveDevicePixelRatio()));
    }
    QSGNode* child = node->firstChild();
    for (const FloatingEmoji& particle : m_particles) {
        static_cast<ParticleNode*>(child)->show(particle);
        child = child->nextSibling();
    }
    return node;
}

} // namespace quorvane
