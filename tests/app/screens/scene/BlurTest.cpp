#include "app/screens/scene/Blur.h"

#include <QPainter>

#include <cmath>

#include <gmock/gmock.h>

namespace quorvane {
namespace {

constexpr int side = 101;
constexpr int middle = side / 2;

QImage square(int size) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.fillRect(middle - size / 2, middle - size / 2, size, size, Qt::white);
    return image;
}

double opacitySum(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            sum += image.pixelColor(x, y).alphaF();
    return sum;
}

TEST(Blur, OfNoRadiusIsTheShapeInItsColour) {
    const QImage result = blurred(square(21), 0, QColor(10, 200, 30));
    EXPECT_EQ(result.pixelColor(middle, middle), QColor(10, 200, 30));
    EXPECT_EQ(result.pixelColor(middle + 11, middle).alpha(), 0);
}

TEST(Blur, SpreadsWhatIsThereWithoutLosingIt) {
    const QImage result = blurred(square(21), 20, Qt::yellow);
    EXPECT_NEAR(opacitySum(result), 21 * 21, 21 * 21 * 0.03);
    EXPECT_LT(result.pixelColor(middle, middle).alpha(), 200);
    EXPECT_GT(result.pixelColor(middle + 14, middle).alpha(), 20);
}

// The edge of a half-plane that is blurred with a bell curve is the curve's integral.
TEST(Blur, IsABellCurveWhoseDeviationIsHalfTheRadius) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter(&image).fillRect(0, 0, middle, side, Qt::white);
    const double radius = 20;
    const QImage result = blurred(image, radius, Qt::white);
    for (const int distance : {-15, -8, -3, 3, 8, 15}) {
        const double expected = std::erfc((distance + 0.5) / (radius / 2) / std::sqrt(2.0)) / 2;
        EXPECT_NEAR(result.pixelColor(middle + distance, middle).alphaF(), expected, 0.04)
            << distance;
    }
}

TEST(Blur, IsAsFaintAsItsColour) {
    const QImage result = blurred(square(61), 4, QColor(0, 0, 0, 77));
    EXPECT_EQ(result.pixelColor(middle, middle), QColor(0, 0, 0, 77));
}

} // namespace
} // namespace quorvane
