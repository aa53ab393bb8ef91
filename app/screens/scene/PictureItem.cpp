#include "app/screens/scene/PictureItem.h"

#include <QPainter>
#include <QQuickWindow>

#include <cmath>
#include <utility>

#include "app/screens/scene/PictureNode.h"

namespace quorvane {

namespace {

// Points, for edges and letters' outlines beyond the item's bounds.
constexpr double pictureMargin = 4;

} // namespace

PictureItem::PictureItem(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    connect(this, &PictureItem::glowLookChanged, this, [this] { redraw(); });
    connect(this, &QQuickItem::scaleChanged, this, [this] { update(); });
}

void PictureItem::setGlow(double glow) {
    if (m_glow == glow)
        return;
    m_glow = glow;
    m_glowForNode->put(glow);
    if (window())
        window()->update();
    emit glowChanged();
}

void PictureItem::redraw() {
    m_needsPaint = true;
    update();
}

void PictureItem::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    now.size() == before.size() ? update() : redraw();
}

void PictureItem::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        redraw();
}

QImage PictureItem::picture(double margin, double scale) const {
    const QSizeF size = this->size() + QSizeF(2 * margin, 2 * margin);
    QImage image((size * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    painter.scale(scale, scale);
    painter.translate(margin, margin);
    draw(painter);
    return image;
}

// Further out the blur is too faint to be seen.
double PictureItem::glowMargin() const {
    return std::ceil(m_glowRadius * 1.4);
}

// A picture is sharp only if its pixels coincide with the window's.
QRectF PictureItem::onPixels(const QRectF& place, double scale) const {
    const QPointF scene = mapToScene(place.topLeft());
    const QPointF snapped(std::round(scene.x() * scale) / scale,
                          std::round(scene.y() * scale) / scale);
    return place.translated(snapped - scene);
}

QSGNode* PictureItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData* /*data*/) {
    if (width() <= 0 || height() <= 0) {
        delete old;
        return nullptr;
    }
    auto* node = old ? static_cast<PictureNode*>(old) : new PictureNode(*window(), m_glowForNode);
    const double scale = window()->effectiveDevicePixelRatio();
    // A scene graph that was released, as for a hidden window, has lost its textures too.
    if (std::exchange(m_needsPaint, false) || !old) {
        node->setPicture(picture(pictureMargin, scale));
        node->setGlowSource(m_glowRadius > 0 ? picture(glowMargin(), scale) : QImage(),
                            {.color = m_glowColor, .radius = m_glowRadius * scale});
    }
    const auto placed = [&](const QImage& image, double margin) {
        return onPixels({QPointF(-margin, -margin), QSizeF(image.size()) / scale}, scale);
    };
    node->place(placed(node->picture(), pictureMargin),
                placed(node->glowSource(), glowMargin()).translated(0, m_glowOffset));
    node->setScaled(this->scale() != 1);
    node->setGlow(m_glow);
    return node;
}

} // namespace quorvane
