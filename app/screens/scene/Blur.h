#pragma once

#include <QColor>
#include <QImage>

namespace quorvane {

/// What is opaque in `picture`, in one colour and blurred: a glow or a shadow of it. `radius` is in
/// the picture's own pixels and is about how far the blur reaches (two standard deviations).
[[nodiscard]] QImage blurred(const QImage& picture, double radius, const QColor& color);

} // namespace quorvane
