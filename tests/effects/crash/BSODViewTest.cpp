#include "effects/crash/BSODView.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "platform/simulated/SimulatedScreens.h"

namespace quorvane {
namespace {

using Weight = TextStyle::Weight;

constexpr Size notebook{.width = 1440, .height = 900};
constexpr double tolerance = 1e-9;

constexpr Color white(double opacity) {
    return {.red = 1, .green = 1, .blue = 1, .alpha = opacity};
}

std::vector<std::string> textsOn(const SimulatedCanvas& canvas) {
    std::vector<std::string> texts;
    for (const auto& text : canvas.texts)
        texts.push_back(text.text);
    return texts;
}

class BSODViewTest : public testing::Test {
protected:
    BSODViewTest() {
        screen->errorMessage = "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED";
        screen->errorCode = "0xC000021A";
    }

    void draw(Size size) { view.draw(canvas, size); }

    void expectAt(std::string_view text, double x, double y) const {
        const Rect& room = canvas.textStarting(text).room;
        EXPECT_NEAR(room.x, x, tolerance) << text;
        EXPECT_NEAR(room.y, y, tolerance) << text;
    }

    std::shared_ptr<StopScreen> screen = std::make_shared<StopScreen>();
    BSODView view{screen};
    SimulatedCanvas canvas;
};

TEST_F(BSODViewTest, FillsTheWholeScreenWithItsBlue) {
    EXPECT_EQ(view.backLayer(), (Color{.red = 0, .green = 0.47, .blue = 0.83, .alpha = 1}));
}

TEST_F(BSODViewTest, HasTheseTextsAndNoOthers) {
    screen->progress = 0.42;
    draw(notebook);
    EXPECT_THAT(
        textsOn(canvas),
        testing::UnorderedElementsAre(
            ":(",
            "Your Mac ran into a problem that it couldn't handle, and now it needs to restart.",
            "If you'd like to know more, you can search online later for this error:\n"
            "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED",
            "42%", "Complete: 42%", "0xC000021A"));
}

TEST_F(BSODViewTest, PlacesItsTextsFromTheTopLeftCorner) {
    draw(notebook);
    // The face is 144 points high, the sentence 57.6, the hint 38.4, each line beside the ring
    // 16.8, and the ring 70.
    expectAt(":(", 100, 80);
    expectAt("Your Mac ran into", 100, 80 + 144 + 24);
    expectAt("If you'd like", 100, 248 + 57.6 + 32);
    constexpr double rowTop = 337.6 + 38.4 + 40;
    ASSERT_EQ(canvas.arcs.size(), 2U);
    for (const auto& arc : canvas.arcs) {
        EXPECT_NEAR(arc.centerX, 135, tolerance);
        EXPECT_NEAR(arc.centerY, rowTop + 35, tolerance);
    }
    constexpr double linesTop = rowTop + (70 - (16.8 + 4 + 16.8)) / 2;
    expectAt("Complete: ", 100 + 70 + 32, linesTop);
    expectAt("0xC000021A", 100 + 70 + 32, linesTop + 16.8 + 4);
    // In the ring, two letters wide and 19.2 points high.
    expectAt("0%", 135 - 8, rowTop + 35 - 9.6);
}

TEST_F(BSODViewTest, DrawsItsTextsInTheirSizesWeightsAndOpacities) {
    draw(notebook);
    const auto check = [&](std::string_view text, double size, Weight weight, double opacity) {
        const auto& drawn = canvas.textStarting(text);
        EXPECT_EQ(drawn.style.size, size) << text;
        EXPECT_EQ(drawn.style.weight, weight) << text;
        EXPECT_EQ(drawn.style.color, white(opacity)) << text;
    };
    check(":(", 120, Weight::Light, 1);
    check("Your Mac", 24, Weight::Bold, 1);
    check("If you'd like", 16, Weight::Regular, 0.8);
    check("0%", 16, Weight::Bold, 1);
    check("Complete: 0%", 14, Weight::Regular, 0.8);
    check("0xC000021A", 14, Weight::Regular, 0.6);
}

TEST_F(BSODViewTest, TheSentenceIs700PointsWideOrLessOnANarrowScreen) {
    // Letters are 12 points wide: 58 of them on a line of 700 points.
    for (const auto& [width, line] : {std::pair(1440.0, 58 * 12), std::pair(900.0, 58 * 12),
                                      std::pair(880.0, 56 * 12), std::pair(600.0, 33 * 12)}) {
        SimulatedCanvas each;
        view.draw(each, {.width = width, .height = 1024});
        EXPECT_EQ(each.textStarting("Your Mac").room.width, line) << width;
    }
}

TEST_F(BSODViewTest, EveryStopCodeHasALineOfItsOwnOnEveryScreen) {
    for (const char* name : {"SYSTEM_THREAD_EXCEPTION_NOT_HANDLED", "DRIVER_IRQL_NOT_LESS_OR_EQUAL",
                             "SYSTEM_SERVICE_EXCEPTION", "WINLOGON_FATAL_ERROR",
                             "PAGE_FAULT_IN_NONPAGED_AREA", "CRITICAL_PROCESS_DIED"})
        for (int width = 800; width <= 3840; width += 16) {
            screen->errorMessage = name;
            SimulatedCanvas each;
            view.draw(each, {.width = static_cast<double>(width), .height = 600});
            const auto& hint = each.textStarting("If you'd like");
            EXPECT_TRUE(hint.text.ends_with(std::string("error:\n") + name)) << hint.text;
            ASSERT_NEAR(hint.room.height, 2 * 1.2 * 16, tolerance) << name << " at " << width;
        }
}

TEST_F(BSODViewTest, NothingReachesIntoThePaddingOnAnyScreen) {
    screen->progress = 1;
    for (const Size size :
         {Size{.width = 800, .height = 600}, Size{.width = 800, .height = 1280},
          Size{.width = 1024, .height = 600}, Size{.width = 1080, .height = 1920}, notebook,
          Size{.width = 3840, .height = 2160}, Size{.width = 2160, .height = 3840}}) {
        SimulatedCanvas each;
        view.draw(each, size);
        ASSERT_EQ(each.texts.size(), 6U);
        for (const auto& text : each.texts) {
            EXPECT_GE(text.room.x, 100) << text.text;
            EXPECT_GE(text.room.y, 80) << text.text;
            EXPECT_LE(text.room.x + text.room.width, size.width - 100) << text.text;
            EXPECT_LE(text.room.y + text.room.height, size.height - 80) << text.text;
        }
        ASSERT_EQ(each.arcs.size(), 2U);
        EXPECT_LE(each.arcs[0].centerY + 35, size.height - 80);
    }
}

TEST_F(BSODViewTest, TheRingIsAFaintCircleUnderAnArcAsLongAsTheProgress) {
    for (const double progress : {0.0, 0.25, 0.5, 1.0}) {
        screen->progress = progress;
        SimulatedCanvas each;
        view.draw(each, notebook);
        ASSERT_EQ(each.arcs.size(), 2U);
        EXPECT_EQ(each.arcs[0].fraction, 1);
        EXPECT_EQ(each.arcs[0].color, white(0.25));
        EXPECT_EQ(each.arcs[1].fraction, progress);
        EXPECT_EQ(each.arcs[1].color, white(1));
        for (const auto& arc : each.arcs) {
            EXPECT_EQ(arc.radius, 35);
            EXPECT_EQ(arc.lineWidth, 3);
        }
    }
}

struct Percent {
    double progress;
    const char* text;
};

class PercentTest : public BSODViewTest, public testing::WithParamInterface<Percent> {};

TEST_P(PercentTest, IsTruncatedAndNeverRounded) {
    screen->progress = GetParam().progress;
    view.draw(canvas, notebook);
    const std::string percent = GetParam().text;
    EXPECT_THAT(textsOn(canvas), testing::AllOf(testing::Contains(percent),
                                                testing::Contains("Complete: " + percent)));
}

INSTANTIATE_TEST_SUITE_P(Values, PercentTest,
                         testing::Values(Percent{0, "0%"}, Percent{0.009, "0%"},
                                         Percent{0.015, "1%"}, Percent{0.5, "50%"},
                                         Percent{0.505, "50%"}, Percent{0.99, "99%"},
                                         Percent{0.994, "99%"}, Percent{0.9999, "99%"},
                                         Percent{1, "100%"}));

TEST_F(BSODViewTest, NotifiesOfEachChangeOfTheProgressUntilItIsCancelled) {
    int changes = 0;
    std::optional<Subscription> subscription = view.observeChanges([&] { ++changes; });
    screen->progress = 0.5;
    screen->progress = 0.5;
    EXPECT_EQ(changes, 1);
    screen->progress = 0.51;
    EXPECT_EQ(changes, 2);
    subscription.reset();
    screen->progress = 0.52;
    EXPECT_EQ(changes, 2);
}

TEST_F(BSODViewTest, NotifiesOfEachChangeOfTheNameAndTheCodeUntilItIsCancelled) {
    int changes = 0;
    std::optional<Subscription> subscription = view.observeChanges([&] { ++changes; });
    screen->errorMessage = "CRITICAL_PROCESS_DIED";
    EXPECT_EQ(changes, 1);
    screen->errorCode = "0x000000EF";
    EXPECT_EQ(changes, 2);
    screen->errorMessage = "CRITICAL_PROCESS_DIED";
    screen->errorCode = "0x000000EF";
    EXPECT_EQ(changes, 2);
    subscription.reset();
    screen->errorMessage = "WINLOGON_FATAL_ERROR";
    screen->errorCode = "0xC000021A";
    EXPECT_EQ(changes, 2);
}

TEST_F(BSODViewTest, HasNoSpinner) {
    draw(notebook);
    EXPECT_TRUE(canvas.spinners.empty());
}

} // namespace
} // namespace quorvane
