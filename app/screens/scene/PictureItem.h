#pragma once

#include <QColor>
#include <QImage>
#include <QQuickItem>
#include <QtQmlIntegration/qqmlintegration.h>

#include <memory>

#include "app/screens/scene/RenderMailbox.h"

class QPainter;

namespace quorvane {

/// A picture that is painted once, over a glow of its own shape whose radius follows `glow`. The
/// glow is blurred once at a few radii; a frame shows two neighbouring ones, cross-faded.
class PictureItem : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS
    /// Its alpha is the glow's.
    Q_PROPERTY(QColor glowColor MEMBER m_glowColor NOTIFY glowLookChanged FINAL)
    /// How far the full glow reaches, in points; 0 is no glow.
    Q_PROPERTY(double glowRadius MEMBER m_glowRadius NOTIFY glowLookChanged FINAL)
    /// How far below the picture it lies, in points.
    Q_PROPERTY(double glowOffset MEMBER m_glowOffset NOTIFY glowLookChanged FINAL)
    /// 0 to 1.
    Q_PROPERTY(double glow READ glow WRITE setGlow NOTIFY glowChanged FINAL)

public:
    explicit PictureItem(QQuickItem* parent = nullptr);

    [[nodiscard]] double glow() const { return m_glow; }

    void setGlow(double glow);

signals:
    void glowLookChanged();
    void glowChanged();

protected:
    /// Paints in the item's own coordinates, up to a few points beyond its bounds.
    virtual void draw(QPainter& painter) const = 0;
    /// Schedules draw() for the next frame.
    void redraw();

    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    [[nodiscard]] QImage picture(double margin, double scale) const;
    [[nodiscard]] double glowMargin() const;
    [[nodiscard]] QRectF onPixels(const QRectF& place, double scale) const;

    QColor m_glowColor = Qt::transparent;
    double m_glowRadius = 0;
    double m_glowOffset = 0;
    double m_glow = 0;
    std::shared_ptr<RenderMailbox<double>> m_glowForNode =
        std::make_shared<RenderMailbox<double>>();
    bool m_needsPaint = true;
};

} // namespace quorvane
