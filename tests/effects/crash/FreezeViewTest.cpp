#include "effects/crash/FreezeView.h"

#include <array>
#include <gtest/gtest.h>

#include "platform/simulated/SimulatedScreens.h"

namespace quorvane {
namespace {

constexpr Size notebook{.width = 1440, .height = 900};
constexpr double tolerance = 1e-9;

TEST(FreezeView, FillsTheScreenWithTranslucentWhite) {
    EXPECT_EQ(FreezeView().backLayer(), (Color{.red = 1, .green = 1, .blue = 1, .alpha = 0.55}));
}

TEST(FreezeView, DrawsItsTextInGrey) {
    SimulatedCanvas canvas;
    FreezeView().draw(canvas, notebook);
    ASSERT_EQ(canvas.texts.size(), 1U);
    EXPECT_EQ(canvas.texts[0].text, "(Not Responding)");
    const TextStyle& style = canvas.texts[0].style;
    EXPECT_EQ(style.size, 22);
    EXPECT_EQ(style.weight, TextStyle::Weight::Medium);
    EXPECT_NEAR(style.color.red * 255, 142, tolerance);
    EXPECT_NEAR(style.color.green * 255, 142, tolerance);
    EXPECT_NEAR(style.color.blue * 255, 147, tolerance);
    EXPECT_EQ(style.color.alpha, 0.8);
}

TEST(FreezeView, TheSpinnerIsGreyAndThreeTimesItsOwnSize) {
    SimulatedCanvas canvas;
    FreezeView().draw(canvas, notebook);
    ASSERT_EQ(canvas.spinners.size(), 1U);
    const Spinner& spinner = canvas.spinners[0];
    EXPECT_EQ(spinner.scale, 3);
    EXPECT_NEAR(spinner.tint.red * 255, 142, tolerance);
    EXPECT_NEAR(spinner.tint.green * 255, 142, tolerance);
    EXPECT_NEAR(spinner.tint.blue * 255, 147, tolerance);
    EXPECT_EQ(spinner.tint.alpha, 1);
}

TEST(FreezeView, CentresSpinnerAndTextOnEveryScreen) {
    for (const Size size :
         {notebook, Size{.width = 800, .height = 1280}, Size{.width = 3840, .height = 2160}}) {
        SimulatedCanvas canvas;
        FreezeView().draw(canvas, size);
        // The spinner keeps the 32 points of its own size; below it come 20 of spacing and 20 of
        // padding, and the text, 176 by 26.4.
        const double top = (size.height - (32 + 20 + 20 + 26.4)) / 2;
        ASSERT_EQ(canvas.spinners.size(), 1U);
        EXPECT_NEAR(canvas.spinners[0].centerX, size.width / 2, tolerance);
        EXPECT_NEAR(canvas.spinners[0].centerY, top + 16, tolerance);
        const Rect& room = canvas.textStarting("(Not Responding)").room;
        EXPECT_NEAR(room.x, (size.width - 176) / 2, tolerance);
        EXPECT_NEAR(room.y, top + 32 + 20 + 20, tolerance);
    }
}

TEST(FreezeView, HasNothingElse) {
    SimulatedCanvas canvas;
    FreezeView().draw(canvas, notebook);
    EXPECT_EQ(canvas.texts.size(), 1U);
    EXPECT_TRUE(canvas.arcs.empty());
}

} // namespace
} // namespace quorvane
