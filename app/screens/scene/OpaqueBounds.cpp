#include "app/screens/scene/OpaqueBounds.h"

#include <algorithm>

namespace quorvane {

QRect opaqueBounds(const QImage& picture) {
    const auto isSeen = [](QRgb pixel) { return pixel != 0; };
    int left = picture.width();
    int right = -1;
    int top = picture.height();
    int bottom = -1;
    for (int y = 0; y < picture.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        const auto* end = line + picture.width();
        const auto* first = std::find_if(line, end, isSeen);
        if (first == end)
            continue;
        const auto last =
            std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(line), isSeen);
        left = std::min(left, static_cast<int>(first - line));
        right = std::max(right, static_cast<int>(last.base() - line) - 1);
        top = std::min(top, y);
        bottom = y;
    }
    return {QPoint(left, top), QPoint(right, bottom)};
}

} // namespace quorvane
