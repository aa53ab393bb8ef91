#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "effects/crash/BSODView.h"
#include "effects/crash/FreezeView.h"
#include "platform/simulated/SimulatedScreens.h"

namespace quorvane {
namespace {

constexpr Size notebook{.width = 1440, .height = 900};

class BSODViewTest : public testing::Test {
protected:
    BSODViewTest() {
        screen->errorMessage = "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED";
        screen->errorCode = "0xC000021A";
    }

    void draw(Size size) {
        view.drawStill(canvas, size);
        view.drawChanging(canvas, size);
    }

    std::shared_ptr<StopScreen> screen = std::make_shared<StopScreen>();
    BSODView view{screen};
    SimulatedCanvas canvas;
};

TEST_F(BSODViewTest, fills_the_whole_screen_with_its_blue) {
    draw(notebook);
    ASSERT_EQ(canvas.fills.size(), 1U);
    EXPECT_EQ(canvas.fills[0].rect, (Rect{.x = 0, .y = 0, .width = 1440, .height = 900}));
    EXPECT_EQ(canvas.fills[0].color, (Color{.red = 0, .green = 0.47, .blue = 0.83, .alpha = 1}));
}

TEST_F(BSODViewTest, hangs_its_texts_from_the_top_left_corner_with_their_gaps) {
    draw(notebook);
    const auto& face = canvas.textStarting(":(");
    const auto& sentence = canvas.textStarting("Your Mac ran into");
    const auto& hint = canvas.textStarting("If you'd like");
    EXPECT_EQ(face.room.x, 100);
    EXPECT_EQ(face.room.y, 80);
    EXPECT_EQ(sentence.room.x, 100);
    EXPECT_DOUBLE_EQ(sentence.room.y, face.room.y + face.room.height + 24);
    EXPECT_DOUBLE_EQ(hint.room.y, sentence.room.y + sentence.room.height + 32);
    EXPECT_DOUBLE_EQ(canvas.arcs.at(0).centerY - 35, hint.room.y + hint.room.height + 40);
    EXPECT_EQ(canvas.arcs[0].centerX, 135);
}

TEST_F(BSODViewTest, says_its_texts_in_their_sizes_weights_and_opacities) {
    draw(notebook);
    const auto check = [&](std::string_view text, double size, TextStyle::Weight weight,
                           double opacity) {
        const auto& drawn = canvas.textStarting(text);
        EXPECT_EQ(drawn.style.size, size) << text;
        EXPECT_EQ(drawn.style.weight, weight) << text;
        EXPECT_EQ(drawn.style.color, (Color{.red = 1, .green = 1, .blue = 1, .alpha = opacity}));
    };
    using Weight = TextStyle::Weight;
    check(":(", 120, Weight::Light, 1);
    check("Your Mac ran into a problem that it couldn't handle, and now it needs to restart.", 24,
          Weight::Bold, 1);
    check("If you'd like to know more, you can search online later for this error:\n"
          "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED",
          16, Weight::Regular, 0.8);
    check("0%", 16, Weight::Bold, 1);
    check("Complete: 0%", 14, Weight::Regular, 0.8);
    check("0xC000021A", 14, Weight::Regular, 0.6);
}

TEST_F(BSODViewTest, the_sentence_is_at_most_700_points_wide_and_narrower_screens_wrap_it_more) {
    draw(notebook);
    EXPECT_LE(canvas.textStarting("Your Mac").room.width, 700);
    const double height = canvas.textStarting("Your Mac").room.height;
    SimulatedCanvas narrow;
    view.drawStill(narrow, {.width = 600, .height = 1024});
    EXPECT_LE(narrow.textStarting("Your Mac").room.width, 400);
    EXPECT_GT(narrow.textStarting("Your Mac").room.height, height);
}

TEST_F(BSODViewTest, the_ring_is_a_faint_circle_under_an_arc_as_long_as_the_progress) {
    screen->progress = 0.25;
    draw(notebook);
    ASSERT_EQ(canvas.arcs.size(), 2U);
    EXPECT_EQ(canvas.arcs[0].fraction, 1);
    EXPECT_EQ(canvas.arcs[0].color.alpha, 0.25);
    EXPECT_EQ(canvas.arcs[1].fraction, 0.25);
    EXPECT_EQ(canvas.arcs[1].color.alpha, 1);
    for (const auto& arc : canvas.arcs) {
        EXPECT_EQ(arc.radius, 35);
        EXPECT_EQ(arc.lineWidth, 3);
        EXPECT_EQ(arc.centerX, 135);
    }
}

TEST_F(BSODViewTest, the_number_is_centred_in_the_ring_and_the_lines_beside_it) {
    screen->progress = 0.5;
    draw(notebook);
    const auto& number = canvas.textStarting("50%");
    const double centerY = canvas.arcs[0].centerY;
    EXPECT_DOUBLE_EQ(number.room.x + number.room.width / 2, 135);
    EXPECT_DOUBLE_EQ(number.room.y + number.room.height / 2, centerY);
    const auto& complete = canvas.textStarting("Complete: 50%");
    const auto& code = canvas.textStarting("0xC000021A");
    EXPECT_EQ(complete.room.x, 100 + 70 + 32);
    EXPECT_DOUBLE_EQ(code.room.y, complete.room.y + complete.room.height + 4);
    EXPECT_DOUBLE_EQ((complete.room.y + code.room.y + code.room.height) / 2, centerY);
}

struct Percent {
    double progress;
    const char* text;
};

class PercentTest : public BSODViewTest, public testing::WithParamInterface<Percent> {};

TEST_P(PercentTest, is_cut_off_and_never_rounded) {
    screen->progress = GetParam().progress;
    draw(notebook);
    EXPECT_EQ(canvas.textStarting("Complete").text, std::string("Complete: ") + GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Values, PercentTest,
                         testing::Values(Percent{0, "0%"}, Percent{0.009, "0%"},
                                         Percent{0.994, "99%"}, Percent{0.999, "99%"},
                                         Percent{1, "100%"}));

TEST_F(BSODViewTest, what_changes_is_drawn_within_its_bounds) {
    for (const Size size :
         {notebook, Size{.width = 1024, .height = 600}, Size{.width = 3840, .height = 2160},
          Size{.width = 800, .height = 1280}}) {
        SimulatedCanvas each;
        screen->progress = 1;
        view.drawChanging(each, size);
        const Rect bounds = view.changingBounds(each, size);
        for (const auto& text : each.texts) {
            EXPECT_GE(text.room.x, bounds.x);
            EXPECT_GE(text.room.y, bounds.y);
            EXPECT_LE(text.room.x + text.room.width, bounds.x + bounds.width);
            EXPECT_LE(text.room.y + text.room.height, bounds.y + bounds.height);
        }
        EXPECT_LE(each.arcs[0].centerY + 36.5, bounds.y + bounds.height);
        EXPECT_GE(each.arcs[0].centerY - 36.5, bounds.y);
        EXPECT_LT(bounds.width * bounds.height, 0.06 * size.width * size.height);
    }
}

TEST_F(BSODViewTest, tells_of_progress_and_of_nothing_else) {
    int changes = 0;
    const auto subscription = view.observeChanges([&] { ++changes; });
    screen->progress = 0.5;
    EXPECT_EQ(changes, 1);
}

TEST(FreezeView, washes_the_desktop_out_under_a_large_grey_spinner_and_its_words) {
    const FreezeView view;
    SimulatedCanvas canvas;
    view.drawStill(canvas, notebook);
    ASSERT_EQ(canvas.fills.size(), 1U);
    EXPECT_EQ(canvas.fills[0].color, (Color{.red = 1, .green = 1, .blue = 1, .alpha = 0.55}));
    const auto& text = canvas.textStarting("(Not Responding)");
    EXPECT_EQ(text.style.size, 22);
    EXPECT_EQ(text.style.weight, TextStyle::Weight::Medium);
    EXPECT_EQ(text.style.color.alpha, 0.8);
    EXPECT_DOUBLE_EQ(text.room.x + text.room.width / 2, 720);
    const auto spinner = view.spinner(canvas, notebook);
    ASSERT_TRUE(spinner);
    EXPECT_EQ(spinner->scale, 3);
    EXPECT_EQ(spinner->centerX, 720);
    EXPECT_LT(spinner->centerY + 16 + 40, text.room.y + 1e-9);
}

TEST(FreezeView, the_whole_stack_is_centred) {
    const FreezeView view;
    SimulatedCanvas canvas;
    view.drawStill(canvas, notebook);
    const auto& text = canvas.textStarting("(Not Responding)");
    const double top = view.spinner(canvas, notebook)->centerY - 16;
    EXPECT_NEAR(top, 900 - (text.room.y + text.room.height), 1e-9);
}

} // namespace
} // namespace quorvane
