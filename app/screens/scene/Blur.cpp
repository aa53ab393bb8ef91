#include "app/screens/scene/Blur.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorvane {

namespace {

// Three box filters in a row are as good as the bell curve of the same variance.
constexpr int boxes = 3;

// Pixels to each side, so that the variance of the boxes together is that of the blur.
int reachOfABox(double radius) {
    const double deviation = radius / 2;
    const double width = std::sqrt(12 * deviation * deviation / boxes + 1);
    return static_cast<int>(std::lround((width - 1) / 2));
}

// Of a row or a column: `count` bytes, each `step` bytes after the one before.
void boxBlur(uchar* line, int count, qsizetype step, int reach, std::vector<uchar>& copy) {
    for (int i = 0; i < count; ++i)
        copy[static_cast<std::size_t>(i)] = line[i * step];
    const auto at = [&](int i) {
        return i < 0 || i >= count ? 0 : int{copy[static_cast<std::size_t>(i)]};
    };
    const int width = 2 * reach + 1;
    int sum = 0;
    for (int i = -reach; i < reach; ++i)
        sum += at(i);
    for (int i = 0; i < count; ++i) {
        sum += at(i + reach);
        line[i * step] = static_cast<uchar>((sum + reach) / width);
        sum -= at(i - reach);
    }
}

void blurAlpha(QImage& alpha, int reach) {
    std::vector<uchar> copy(static_cast<std::size_t>(std::max(alpha.width(), alpha.height())));
    uchar* bits = alpha.bits();
    const qsizetype stride = alpha.bytesPerLine();
    for (int pass = 0; pass < boxes; ++pass) {
        for (int y = 0; y < alpha.height(); ++y)
            boxBlur(bits + y * stride, alpha.width(), 1, reach, copy);
        for (int x = 0; x < alpha.width(); ++x)
            boxBlur(bits + x, alpha.height(), stride, reach, copy);
    }
}

} // namespace

QImage blurred(const QImage& picture, double radius, const QColor& color) {
    QImage alpha = picture.convertToFormat(QImage::Format_Alpha8);
    if (const int reach = reachOfABox(radius); reach > 0)
        blurAlpha(alpha, reach);
    QImage result(picture.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < result.height(); ++y) {
        const uchar* from = alpha.constScanLine(y);
        auto* to = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x)
            to[x] = qPremultiply(
                qRgba(color.red(), color.green(), color.blue(), from[x] * color.alpha() / 255));
    }
    return result;
}

} // namespace quorvane
