#include "tests/app/ContentViewFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Screen = ContentView::Screen;

using ContentViewTest = ContentViewFixture;

// Construction.

TEST_F(ContentViewTest, starts_with_everything_off_but_the_startup_experience) {
    makeView();
    EXPECT_FALSE(view->audioEnabled());
    EXPECT_FALSE(view->sufferingMode());
    EXPECT_FALSE(view->hardwareChecked());
    EXPECT_FALSE(view->isChecking());
    EXPECT_FALSE(view->checkDone());
    EXPECT_FALSE(view->showInfo());
    EXPECT_EQ(view->activeInfoLabel().get(), "");
    EXPECT_EQ(view->textScale().get().value, 0.5);
    EXPECT_EQ(view->emojiRotation().get().value, 0);
    EXPECT_EQ(view->glowAmount().get().value, 0);
    EXPECT_EQ(view->floatingEmojis().size(), 12U);
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, true));
}

TEST_F(ContentViewTest, makes_the_effects_in_their_order_and_starts_none) {
    makeView();
    EXPECT_THAT(created, ElementsAre("keyboard", "fan", "bsod", "freeze"));
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(machine.hid.calls(), IsEmpty());
    EXPECT_THAT(machine.console.lines, IsEmpty());
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(ContentViewTest, rows_of_effects_that_do_not_exist_are_not_there) {
    ContentView alone(machine.platform(), nullptr, {});
    ASSERT_EQ(alone.toggleRows().size(), 1U);
    EXPECT_EQ(alone.toggleRows()[0].text.label, "Build quality");
    alone.onAppear();
    alone.enterSufferingMode();
    alone.leaveSufferingMode();
    EXPECT_FALSE(alone.sufferingMode());
}

TEST_F(ContentViewTest, the_rows_stand_in_their_order) {
    makeView();
    std::vector<std::string_view> labels;
    for (const ToggleRow& each : view->toggleRows())
        labels.push_back(each.text.label);
    EXPECT_THAT(labels, ElementsAre("Build quality", "Keyboard", "Thermals", "Stability",
                                    "Performance", "Startup"));
}

// Screens.

TEST_F(ContentViewTest, a_first_launch_shows_the_hardware_check_and_every_later_one_the_warning) {
    EXPECT_EQ(makeView().screen(), Screen::HardwareCheck);
    view->confirmHardwareCheck();
    EXPECT_EQ(view->screen(), Screen::Warning);
    EXPECT_TRUE(machine.userDefaults.boolForKey("hardwareChecked"));
    EXPECT_EQ(makeView().screen(), Screen::Warning);
}

TEST_F(ContentViewTest, suffering_is_not_remembered) {
    makeReturningView().enterSufferingMode();
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
    EXPECT_EQ(makeReturningView().screen(), Screen::Warning);
}

TEST_F(ContentViewTest, the_three_buttons_change_the_screen_with_a_spring) {
    const Animation spring = Animation::spring(0.4, 0.825);
    makeView().confirmHardwareCheck();
    EXPECT_EQ(view->screenAnimation(), spring);
    view->enterSufferingMode();
    EXPECT_EQ(view->screenAnimation(), spring);
    view->leaveSufferingMode();
    EXPECT_EQ(view->screenAnimation(), spring);
}

TEST_F(ContentViewTest, entering_starts_the_sensor_and_no_effect) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    EXPECT_TRUE(view->sensor().isRunning());
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, true));
}

// Appearing.

TEST_F(ContentViewTest,
       on_its_first_appearance_it_loads_the_creak_and_probes_only_for_a_known_person) {
    makeView().onAppear();
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ Φορτώθηκε: creaking.mp3 (2.0s)"));
    EXPECT_THAT(machine.hid.calls(), IsEmpty());
    EXPECT_FALSE(view->sensor().sensorFound());
}

TEST_F(ContentViewTest,
       a_returning_persons_sensor_is_found_on_appearing_after_the_creak_is_loaded) {
    addLid(100);
    makeReturningView();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ Φορτώθηκε: creaking.mp3 (2.0s)",
                            "✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=100°"));
    EXPECT_FALSE(view->sensor().isRunning());
}

TEST_F(ContentViewTest, appearing_starts_the_animations) {
    makeReturningView();
    EXPECT_EQ(view->textScale().get(),
              (AnimatedValue{.value = 1.0, .animation = Animation::spring(0.6, 0.6)}));
    EXPECT_EQ(
        view->emojiRotation().get(),
        (AnimatedValue{.value = 360, .animation = Animation::linear(20).repeatForever(false)}));
    EXPECT_EQ(
        view->glowAmount().get(),
        (AnimatedValue{.value = 1.0, .animation = Animation::easeInOut(1.5).repeatForever(true)}));
}

TEST_F(ContentViewTest, the_particles_move_twenty_times_a_second_on_every_screen) {
    makeView();
    int steps = 0;
    const auto moved = view->floatingEmojisMoved().observe([&] { ++steps; });
    machine.runLoop.advance(1);
    EXPECT_EQ(steps, 0);
    const double before = view->floatingEmojis()[0].x;
    view->onAppear();
    machine.runLoop.advance(1);
    EXPECT_EQ(steps, 20);
    EXPECT_NE(view->floatingEmojis()[0].x, before);
    view->onDisappear();
    machine.runLoop.advance(1);
    EXPECT_EQ(steps, 40) << "nothing in the view ever stops them";
}

TEST_F(ContentViewTest, a_second_appearance_adds_a_second_particle_timer) {
    makeView().onAppear();
    view->onAppear();
    int steps = 0;
    const auto moved = view->floatingEmojisMoved().observe([&] { ++steps; });
    machine.runLoop.advance(1);
    EXPECT_EQ(steps, 40);
}

// The notification.

TEST_F(ContentViewTest, auto_start_enters_the_control_panel_without_animation) {
    addLid(100);
    makeReturningView();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
    EXPECT_EQ(view->screenAnimation(), Animation{});
    EXPECT_TRUE(view->sensor().isRunning());
}

TEST_F(ContentViewTest, auto_start_while_suffering_does_not_start_the_sensor_again) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    view->sensor().stop();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_FALSE(view->sensor().isRunning());
}

TEST_F(ContentViewTest, auto_start_on_the_hardware_check_leads_to_the_panel_once_it_is_confirmed) {
    makeView().onAppear();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_TRUE(view->sufferingMode());
    EXPECT_EQ(view->screen(), Screen::HardwareCheck);
    view->confirmHardwareCheck();
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
}

} // namespace
} // namespace quorvane
