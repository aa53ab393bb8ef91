#pragma once

#include <QImage>
#include <QRect>

namespace quorvane {

/// The smallest part of `picture`, which has premultiplied colours, that holds all there is to be
/// seen of it; empty if there is nothing. What is drawn for every frame need not be larger.
[[nodiscard]] QRect opaqueBounds(const QImage& picture);

} // namespace quorvane
