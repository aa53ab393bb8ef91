#pragma once

#include <QColor>
#include <QImage>
#include <QSGImageNode>
#include <QSGNode>
#include <QSGTexture>

#include <array>
#include <memory>

#include "app/screens/scene/RenderMailbox.h"

class QQuickWindow;

namespace quorvane {

/// The scene's side of a picture and its glow. Render thread, as the toolkit's nodes are. A
/// transform node that transforms nothing, because the software renderer loses the place of an
/// opacity that changes right below any other node.
class PictureNode final : public QSGTransformNode {
public:
    /// At full size; the radius in the picture's own pixels.
    struct GlowLook {
        QColor color;
        double radius = 0;
    };

    /// Shows each newer `glow` by itself.
    PictureNode(QQuickWindow& window, std::shared_ptr<RenderMailbox<double>> glow);

    void setPicture(const QImage& picture);
    /// The shape that glows; a null image is no glow.
    void setGlowSource(const QImage& source, const GlowLook& look);
    void place(const QRectF& picture, const QRectF& glow);
    /// Whether the pictures' pixels are not the window's.
    void setScaled(bool scaled);
    /// 0 to 1.
    void setGlow(double glow);

    void preprocess() override;

    [[nodiscard]] const QImage& picture() const { return m_picture; }

    [[nodiscard]] const QImage& glowSource() const { return m_glowSource; }

private:
    // The radii at which the glow is blurred are so many even steps of the full one. From none to
    // the first, the first fades in.
    static constexpr int steps = 5;

    /// One of the two blurs that are shown at a time.
    struct Layer {
        QSGOpacityNode opacity;
        std::unique_ptr<QSGImageNode> image;
    };

    /// The glow at one radius, as far as there is anything to be seen of it.
    struct BlurStep {
        std::unique_ptr<QSGTexture> texture;
        QRect bounds;
    };

    void show(Layer& layer, int step, double opacity);
    [[nodiscard]] const BlurStep& blur(int step);
    [[nodiscard]] QRectF placeOf(const BlurStep& blur) const;

    QQuickWindow& m_window;
    std::shared_ptr<RenderMailbox<double>> m_newerGlow;
    QImage m_picture;
    QImage m_glowSource;
    QRectF m_glowPlace;
    GlowLook m_look;
    std::unique_ptr<QSGTexture> m_pictureTexture;
    std::array<BlurStep, steps> m_blurs;
    std::array<Layer, 2> m_layers;
    std::unique_ptr<QSGImageNode> m_pictureNode;
};

} // namespace quorvane
