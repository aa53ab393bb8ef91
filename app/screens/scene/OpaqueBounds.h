#pragma once

#include <QImage>
#include <QRect>

namespace quorvane {

/// The smallest rectangle that holds every visible pixel of `picture`, which has premultiplied
/// colours; empty if there are none. A texture cut to it is cheaper to draw in each frame.
[[nodiscard]] QRect opaqueBounds(const QImage& picture);

} // namespace quorvane
