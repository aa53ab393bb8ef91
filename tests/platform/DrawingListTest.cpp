#include "platform/DrawingList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/simulated/SimulatedScreens.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Color white{.red = 1, .green = 1, .blue = 1, .alpha = 1};
// Letters are 10 points wide, lines 24 high.
constexpr TextStyle style{.size = 20, .weight = TextStyle::Weight::Regular, .color = white};
// Its length is 100 points.
constexpr double radius = 15.915494309189533;

/// A page of two texts and an arc.
struct Page {
    std::string first = "one";
    std::string second = "two";
    double fraction = 0;
};

class DrawingListTest : public testing::Test {
protected:
    std::unique_ptr<DrawingList> list(const Page& page, double scale = 1) {
        auto made = std::make_unique<DrawingList>(m_canvas, scale);
        made->drawText(page.first, style, 100, 100, 400);
        made->drawText(page.second, style, 100, 200, 400);
        made->strokeArc(500, 500, radius, 3, page.fraction, white);
        return made;
    }

    std::vector<Rect> changes(const Page& before, const Page& after, double scale = 1) {
        return list(after, scale)->changes(*list(before, scale));
    }

    SimulatedCanvas m_canvas;
};

bool contains(const Rect& outer, double x, double y) {
    return x >= outer.x && x <= outer.x + outer.width && y >= outer.y &&
           y <= outer.y + outer.height;
}

} // namespace

TEST_F(DrawingListTest, EqualPagesHaveNoChanges) {
    EXPECT_THAT(changes({}, {}), IsEmpty());
}

TEST_F(DrawingListTest, ChangedTextIsItsOldAndItsNewRoom) {
    // Two points around, for letters that reach beyond their line.
    EXPECT_THAT(changes({}, {.first = "longer"}),
                ElementsAre(Rect{.x = 98, .y = 98, .width = 64, .height = 28}));
    EXPECT_THAT(changes({.second = "longer"}, {}),
                ElementsAre(Rect{.x = 98, .y = 198, .width = 64, .height = 28}));
}

TEST_F(DrawingListTest, ThingsThatComeAndGoAreChanges) {
    const auto page = list({});
    DrawingList empty(m_canvas, 1);
    EXPECT_EQ(page->changes(empty).size(), 3U);
    EXPECT_EQ(empty.changes(*page).size(), 3U);
}

TEST_F(DrawingListTest, GrowingArcChangesWhereItHasGrown) {
    const std::vector<Rect> all = changes({.fraction = 0.2}, {.fraction = 0.3});
    ASSERT_EQ(all.size(), 1U);
    // A quarter of the circle is at its right, and within the change.
    EXPECT_TRUE(contains(all[0], 500 + radius + 1.5, 500));
    EXPECT_TRUE(contains(all[0], 500 + radius - 1.5, 500));
    EXPECT_FALSE(contains(all[0], 500, 500 - radius));
    EXPECT_LT(all[0].width, 10);
    EXPECT_LT(all[0].height, 18);
}

TEST_F(DrawingListTest, ArcGrowsInWholePixelsOfItsCircle) {
    EXPECT_THAT(changes({.fraction = 0.501}, {.fraction = 0.509}), IsEmpty());
    EXPECT_EQ(changes({.fraction = 0.501}, {.fraction = 0.511}).size(), 1U);
    // At scale 2 the circle has 200 pixels.
    EXPECT_EQ(changes({.fraction = 0.501}, {.fraction = 0.509}, 2).size(), 1U);
}

TEST_F(DrawingListTest, ArcIsWholeAtOneAndEmptyBelowZero) {
    for (const auto& [fraction, drawn] :
         {std::pair(1.0, 1.0), std::pair(1.5, 1.0), std::pair(-0.5, 0.0)}) {
        SimulatedCanvas canvas;
        list({.fraction = fraction})->draw(canvas, {.width = 1000, .height = 1000});
        ASSERT_EQ(canvas.arcs.size(), 1U);
        EXPECT_EQ(canvas.arcs[0].fraction, drawn) << fraction;
    }
}

TEST_F(DrawingListTest, DrawsWhatIsWithinTheArea) {
    SimulatedCanvas canvas;
    const auto page = list({.fraction = 1});
    page->draw(canvas, {.x = 90, .y = 190, .width = 100, .height = 100});
    ASSERT_EQ(canvas.texts.size(), 1U);
    EXPECT_EQ(canvas.texts[0].text, "two");
    EXPECT_EQ(canvas.texts[0].room, (Rect{.x = 100, .y = 200, .width = 30, .height = 24}));
    EXPECT_TRUE(canvas.arcs.empty());
}

TEST_F(DrawingListTest, SpinnerIsDrawnAndTurnsWithoutAChange) {
    const Spinner spinner{.centerX = 50, .centerY = 40, .scale = 3, .tint = white};
    DrawingList before(m_canvas, 1);
    before.drawSpinner(spinner);
    DrawingList after(m_canvas, 1);
    after.drawSpinner(spinner);
    EXPECT_THAT(after.changes(before), IsEmpty());
    EXPECT_EQ(after.spinner(), spinner);
    EXPECT_THAT(after.areas(), ElementsAre(Rect{.x = 2, .y = -8, .width = 96, .height = 96}));
    SimulatedCanvas canvas;
    after.draw(canvas, {.width = 10, .height = 10});
    EXPECT_THAT(canvas.spinners, ElementsAre(spinner));
}

} // namespace quorvane
