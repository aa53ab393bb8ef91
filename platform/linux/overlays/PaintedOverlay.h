#pragma once

#include <QImage>
#include <QRegion>
#include <memory>
#include <optional>

#include "platform/Screens.h"
#include "platform/linux/overlays/DrawingList.h"
#include "platform/linux/overlays/PaintedCanvas.h"

namespace quorvane {

/// Draws a view into an image: once what is still, and from then on only what changes.
/// The image stays the caller's and is handed in each time.
class PaintedOverlay {
public:
    /// `scale`: pixels a point.
    PaintedOverlay(std::shared_ptr<const OverlayView> view, double scale);

    /// Draws everything over what the image holds.
    void drawAll(QImage& image);
    /// Draws what has changed since it was last drawn; the pixels that may differ now,
    /// which may be none.
    [[nodiscard]] QRegion drawChanges(QImage& image);

    /// Whether it has a spinner, and so has to be drawn anew at each of its steps.
    [[nodiscard]] bool spins() const { return m_spinner.has_value(); }

    void turnSpinner();

private:
    [[nodiscard]] QRect changingPixels(const QImage& image);
    [[nodiscard]] QRegion changedPixels(Size size);
    void paintChanging(const QRect& part);
    [[nodiscard]] Size sizeOf(const QImage& image) const;

    std::shared_ptr<const OverlayView> m_view;
    double m_scale;
    LaidOutTexts m_texts;
    std::optional<Spinner> m_spinner;
    int m_step = 0;
    // The step that is in the image.
    std::optional<int> m_paintedStep;
    DrawingList m_drawn{m_texts};
    DrawingList m_next{m_texts};
    // Where things change, what is still there, and room to draw in out of sight.
    QRect m_region;
    QImage m_still;
    QImage m_work;
};

} // namespace quorvane
