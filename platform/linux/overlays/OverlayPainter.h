#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <memory>
#include <vector>

#include "platform/DrawingList.h"
#include "platform/Screens.h"
#include "platform/linux/overlays/PaintedCanvas.h"

namespace quorvane {

/// A part of a panel, to be put over its background.
struct OverlayPicture {
    /// Premultiplied, with alpha: transparent where nothing is drawn, unless the view's back layer
    /// is opaque.
    QImage image;
    /// Pixels, in the panel.
    QPoint corner;
};

/// Paints a view in pictures, after a change only of what looks different. Main thread only.
class OverlayPainter {
public:
    /// `size` in pixels; `scale`: pixels per point.
    OverlayPainter(std::shared_ptr<const OverlayView> view, QSize size, double scale);

    [[nodiscard]] bool hasSpinner() const { return m_drawing->spinner().has_value(); }

    /// Everything of which a part is within `area`, as it was painted last.
    [[nodiscard]] std::vector<OverlayPicture> paint(const QRect& area);
    /// What has changed since it was painted last.
    [[nodiscard]] std::vector<OverlayPicture> paintChanges();
    /// The spinner's next picture.
    [[nodiscard]] OverlayPicture turnSpinner();

private:
    [[nodiscard]] std::unique_ptr<DrawingList> list();
    [[nodiscard]] QRect pixels(const Rect& area) const;
    [[nodiscard]] OverlayPicture paint(const Rect& area);

    std::shared_ptr<const OverlayView> m_view;
    Size m_size;
    double m_scale;
    TextLayouts m_texts;
    PaintedCanvas m_measuring{nullptr, m_texts, 0};
    // As it was painted last.
    std::unique_ptr<DrawingList> m_drawing;
    int m_spinnerStep = 0;
};

} // namespace quorvane
