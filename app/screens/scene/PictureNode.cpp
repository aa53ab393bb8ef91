#include "app/screens/scene/PictureNode.h"

#include <QQuickWindow>

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/screens/scene/Blur.h"
#include "app/screens/scene/OpaqueBounds.h"

namespace quorvane {

PictureNode::PictureNode(QQuickWindow& window, std::shared_ptr<RenderMailbox<double>> glow)
    : m_window(window), m_newerGlow(std::move(glow)), m_pictureNode(window.createImageNode()) {
    setFlag(UsePreprocess);
    const auto prepare = [](QSGImageNode& node) { node.setFlag(OwnedByParent, false); };
    for (Layer& layer : m_layers) {
        layer.image.reset(window.createImageNode());
        prepare(*layer.image);
        layer.opacity.setFlag(OwnedByParent, false);
        layer.opacity.setOpacity(0);
        appendChildNode(&layer.opacity);
    }
    prepare(*m_pictureNode);
}

void PictureNode::setPicture(const QImage& picture) {
    m_picture = picture;
    std::unique_ptr<QSGTexture> texture(m_window.createTextureFromImage(picture));
    m_pictureNode->setTexture(texture.get());
    m_pictureTexture = std::move(texture);
    // A node without a texture must not be in the scene.
    if (!m_pictureNode->parent())
        appendChildNode(m_pictureNode.get());
}

void PictureNode::setGlowSource(const QImage& source, const GlowLook& look) {
    for (Layer& layer : m_layers)
        layer.opacity.removeAllChildNodes();
    m_blurs = {};
    m_glowSource = source;
    m_look = look;
}

void PictureNode::place(const QRectF& picture, const QRectF& glow) {
    m_pictureNode->setRect(picture);
    m_glowPlace = glow;
}

void PictureNode::setScaled(bool scaled) {
    const auto filtering = scaled ? QSGTexture::Linear : QSGTexture::Nearest;
    m_pictureNode->setFiltering(filtering);
    for (Layer& layer : m_layers)
        layer.image->setFiltering(filtering);
}

void PictureNode::preprocess() {
    if (const auto glow = m_newerGlow->take())
        setGlow(*glow);
}

void PictureNode::setGlow(double glow) {
    if (m_glowSource.isNull())
        return;
    const double at = std::clamp(glow, 0.0, 1.0) * steps;
    const int below = std::min(static_cast<int>(at), steps - 1);
    show(m_layers[0], below, std::min(1.0, below + 1 - at));
    show(m_layers[1], below + 1, at - below);
}

// Step 0 is no glow at all: it lies hidden behind the picture.
void PictureNode::show(Layer& layer, int step, double opacity) {
    layer.opacity.setOpacity(step == 0 ? 0 : opacity);
    if (step == 0 || opacity <= 0)
        return;
    const BlurStep& shown = blur(step);
    layer.image->setTexture(shown.texture.get());
    layer.image->setRect(placeOf(shown));
    layer.image->setSourceRect(QRectF({}, QSizeF(shown.bounds.size())));
    if (!layer.image->parent())
        layer.opacity.appendChildNode(layer.image.get());
}

const PictureNode::BlurStep& PictureNode::blur(int step) {
    BlurStep& blur = m_blurs.at(static_cast<std::size_t>(step) - 1);
    if (!blur.texture) {
        const QImage picture = blurred(m_glowSource, m_look.radius * step / steps, m_look.color);
        blur.bounds = opaqueBounds(picture);
        // A texture of nothing is none.
        if (blur.bounds.isEmpty())
            blur.bounds = {0, 0, 1, 1};
        blur.texture.reset(m_window.createTextureFromImage(picture.copy(blur.bounds)));
    }
    return blur;
}

QRectF PictureNode::placeOf(const BlurStep& blur) const {
    const double pixel = m_glowPlace.width() / m_glowSource.width();
    return {m_glowPlace.topLeft() + QPointF(blur.bounds.topLeft()) * pixel,
            QSizeF(blur.bounds.size()) * pixel};
}

} // namespace quorvane
