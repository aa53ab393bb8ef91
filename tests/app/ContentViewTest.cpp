#include "app/ContentView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Screen = ContentView::Screen;

constexpr auto clipPath = "sounds/creaking.mp3";
constexpr auto completionLine = "✅ [AUDIO] Τελείωσε — ready for next";

/// Notes every call; becomes active only if it can run.
class FakeEffect final : public EffectManager {
public:
    FakeEffect(std::string name, std::vector<std::string>& calls)
        : m_name(std::move(name)), m_calls(calls) {}

    [[nodiscard]] const Observable<bool>& isActive() const override { return m_isActive; }

    void start() override {
        m_calls.push_back(m_name + " start");
        m_isActive = canRun;
    }

    void stop() override {
        m_calls.push_back(m_name + " stop");
        m_isActive = false;
    }

    bool canRun = true;

private:
    std::string m_name;
    std::vector<std::string>& m_calls;
    Observable<bool> m_isActive;
};

class FakeStartup final : public StartupExperience {
public:
    [[nodiscard]] Observable<bool>& startupSoundEnabled() override { return m_enabled; }

private:
    Observable<bool> m_enabled{true};
};

class ContentViewTest : public testing::Test {
protected:
    ContentViewTest() {
        machine.audio.addFile(clipPath, {.sampleRate = 1000, .channels = 1},
                              std::vector<float>(2000, 0.5F));
        machine.bundle.addResource("creaking", "mp3", clipPath);
    }

    ContentView& makeView() {
        const auto factory = [this](std::string name, std::shared_ptr<FakeEffect>& effect) {
            return [this, name = std::move(name), &effect] {
                created.push_back(name);
                effect = std::make_shared<FakeEffect>(name, calls);
                return effect;
            };
        };
        view =
            std::make_unique<ContentView>(machine.platform(), &startup,
                                          EffectFactories{.keyboard = factory("keyboard", keyboard),
                                                          .fan = factory("fan", fan),
                                                          .bsod = factory("bsod", bsod),
                                                          .freeze = factory("freeze", freeze)});
        return *view;
    }

    /// A view of a person who has confirmed the hardware check, as it comes on screen.
    ContentView& makeReturningView() {
        machine.userDefaults.setBool("hardwareChecked", true);
        makeView().onAppear();
        return *view;
    }

    [[nodiscard]] ToggleRow row(std::string_view label) const {
        for (const ToggleRow& candidate : view->toggleRows()) {
            if (candidate.text.label == label)
                return candidate;
        }
        ADD_FAILURE() << "no row " << label;
        return {};
    }

    [[nodiscard]] std::vector<bool> switches() const {
        std::vector<bool> states;
        for (const ToggleRow& each : view->toggleRows())
            states.push_back(each.isOn->get());
        return states;
    }

    void addLid(unsigned degrees) {
        lid = machine.hid.addDevice(0x8104);
        lid->setAngle(degrees);
    }

    SimulatedMachine machine;
    FakeStartup startup;
    std::vector<std::string> calls;
    std::vector<std::string> created;
    std::shared_ptr<FakeEffect> keyboard;
    std::shared_ptr<FakeEffect> fan;
    std::shared_ptr<FakeEffect> bsod;
    std::shared_ptr<FakeEffect> freeze;
    std::shared_ptr<SimulatedHIDDevice> lid;
    std::unique_ptr<ContentView> view;
};

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

// The creak's switch.

TEST_F(ContentViewTest, the_velocity_feed_runs_sixty_times_a_second_only_while_the_switch_is_on) {
    makeReturningView().enterSufferingMode();
    const auto idle = machine.runLoop.pendingCount();
    row("Build quality").setOn(true);
    EXPECT_TRUE(view->audioEnabled());
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
    EXPECT_NEAR(*machine.runLoop.nextDeadline() - machine.runLoop.currentMediaTime(), 1.0 / 60,
                1e-9);
    row("Build quality").setOn(false);
    EXPECT_FALSE(view->audioEnabled());
    EXPECT_EQ(machine.runLoop.pendingCount(), idle);
}

TEST_F(ContentViewTest, a_moving_lid_creaks_while_the_switch_is_on) {
    addLid(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle(
        [start](double time) { return 100 + 50 * std::clamp(time - start - 1, 0.0, 1.0); });
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    machine.runLoop.advance(1);
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
    machine.runLoop.advance(0.5);
    EXPECT_TRUE(view->audioManager().isPlaying());
    machine.runLoop.advance(1);
    EXPECT_FALSE(view->audioManager().isPlaying());
    const auto& sounds = machine.audio.timeline();
    ASSERT_EQ(sounds.size(), 1U);
    // The first whole degree shows after 0.01 s (the sensor rounds), the slope is 0 once the last
    // moving sample has left the window of 0.2 s; polls and feeds add a period each.
    EXPECT_NEAR(sounds[0].startTime, start + 1.01, 1.0 / 30 + 1.0 / 60);
    EXPECT_NEAR(sounds[0].stopTime, start + 2.2, 2.0 / 30 + 1.0 / 60);
}

TEST_F(ContentViewTest, a_moving_lid_is_silent_while_the_switch_is_off) {
    addLid(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle([start](double time) { return 100 + 20 * (time - start); });
    makeReturningView().enterSufferingMode();
    machine.runLoop.advance(2);
    EXPECT_NE(view->sensor().velocity(), 0);
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
}

TEST_F(ContentViewTest, without_a_sensor_waking_screens_creak_for_the_length_of_the_burst) {
    machine.audio.addFile(clipPath, {.sampleRate = 1000, .channels = 1},
                          std::vector<float>(4000, 0.5F));
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    machine.workspace.post(WorkspaceNotification::screensDidWake);
    machine.runLoop.advance(5);
    const auto& sounds = machine.audio.timeline();
    ASSERT_EQ(sounds.size(), 1U);
    EXPECT_NEAR(sounds[0].stopTime - sounds[0].startTime, 3.05, 1.0 / 60 + 1e-9);
}

TEST_F(ContentViewTest, switching_the_creak_off_silences_it_at_once_and_rewinds) {
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    machine.workspace.post(WorkspaceNotification::screensDidWake);
    machine.runLoop.advance(0.5);
    view->setHingeCreak(false);
    EXPECT_FALSE(view->audioManager().isPlaying());
    machine.runLoop.advance(0.1);
    view->setHingeCreak(true);
    machine.runLoop.advance(0.1);
    EXPECT_EQ(machine.audio.timeline().back().offset, 0);
}

TEST_F(ContentViewTest, creak_on_off_on_leaves_exactly_one_live_velocity_timer) {
    makeReturningView();
    const auto idle = machine.runLoop.pendingCount();
    view->setHingeCreak(true);
    view->setHingeCreak(false);
    view->setHingeCreak(true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
}

TEST_F(ContentViewTest, creak_on_twice_leaves_the_earlier_timer_firing_even_after_off) {
    makeReturningView().enterSufferingMode();
    const auto idle = machine.runLoop.pendingCount();
    view->setHingeCreak(true);
    view->setHingeCreak(true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 2);
    view->setHingeCreak(false);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
    machine.workspace.post(WorkspaceNotification::screensDidWake);
    machine.runLoop.advance(0.1);
    EXPECT_TRUE(view->audioManager().isPlaying()) << "the orphaned feed still feeds";
}

// The other switches.

TEST_F(ContentViewTest, the_other_switches_start_and_stop_their_effect_and_show_its_own_flag) {
    makeReturningView();
    for (const auto& [label, name] : {std::pair{"Keyboard", "keyboard"},
                                      {"Thermals", "fan"},
                                      {"Stability", "bsod"},
                                      {"Performance", "freeze"}}) {
        calls.clear();
        const ToggleRow toggle = row(label);
        toggle.setOn(true);
        EXPECT_TRUE(toggle.isOn->get());
        toggle.setOn(false);
        EXPECT_FALSE(toggle.isOn->get());
        EXPECT_THAT(calls, ElementsAre(std::string(name) + " start", std::string(name) + " stop"));
    }
}

TEST_F(ContentViewTest, a_switch_stays_off_when_its_effect_cannot_run) {
    makeReturningView();
    keyboard->canRun = false;
    row("Keyboard").setOn(true);
    EXPECT_FALSE(row("Keyboard").isOn->get());
}

TEST_F(ContentViewTest, the_freeze_switch_written_true_while_active_only_calls_start) {
    makeReturningView();
    row("Performance").setOn(true);
    int notices = 0;
    const auto subscription = row("Performance").isOn->observe([&] { ++notices; });
    row("Performance").setOn(true);
    EXPECT_THAT(calls, ElementsAre("freeze start", "freeze start"));
    EXPECT_EQ(notices, 0);
}

TEST_F(ContentViewTest, the_startup_switch_is_the_startup_experiences_own_flag) {
    makeReturningView();
    row("Startup").setOn(false);
    EXPECT_FALSE(startup.startupSoundEnabled());
    row("Startup").setOn(true);
    EXPECT_TRUE(startup.startupSoundEnabled());
}

// Stopping.

TEST_F(ContentViewTest, the_stop_button_stops_everything_in_its_order_and_shows_the_warning) {
    makeReturningView().enterSufferingMode();
    std::vector<std::string> order;
    const auto note = [&](std::string what) {
        return [&order, this, what = std::move(what)] {
            order.insert(order.end(), calls.begin(), calls.end());
            calls.clear();
            order.push_back(what);
        };
    };
    view->setHingeCreak(true);
    machine.workspace.post(WorkspaceNotification::screensDidWake);
    machine.runLoop.advance(0.1);
    const auto suffering = view->sufferingMode().observe(note("sufferingMode"));
    const auto enabled = view->audioEnabled().observe(note("audioEnabled"));
    const auto playing = view->audioManager().isPlaying().observe(note("creak"));
    const auto sound = startup.startupSoundEnabled().observe(note("startup"));
    view->leaveSufferingMode();
    EXPECT_THAT(order, ElementsAre("sufferingMode", "audioEnabled", "creak", "keyboard stop",
                                   "fan stop", "bsod stop", "freeze stop", "startup"));
    EXPECT_EQ(view->screen(), Screen::Warning);
}

TEST_F(ContentViewTest, the_stop_button_with_every_effect_off_still_stops_all_of_them) {
    makeReturningView().enterSufferingMode();
    view->leaveSufferingMode();
    EXPECT_THAT(calls, ElementsAre("keyboard stop", "fan stop", "bsod stop", "freeze stop"));
    EXPECT_EQ(machine.audio.node(0).calls().back(), "stop");
    EXPECT_EQ(view->screen(), Screen::Warning);
}

TEST_F(ContentViewTest, on_first_entry_only_startup_is_on_and_on_the_second_nothing) {
    makeReturningView().enterSufferingMode();
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, true));
    view->leaveSufferingMode();
    view->enterSufferingMode();
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, false));
}

TEST_F(ContentViewTest, the_stop_button_turns_every_switch_off) {
    makeReturningView().enterSufferingMode();
    for (const ToggleRow& each : view->toggleRows())
        each.setOn(true);
    EXPECT_THAT(switches(), ElementsAre(true, true, true, true, true, true));
    view->leaveSufferingMode();
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, false));
}

TEST_F(ContentViewTest, a_startup_sound_that_is_off_already_is_left_without_a_notice) {
    makeReturningView();
    startup.startupSoundEnabled() = false;
    int notices = 0;
    const auto subscription = startup.startupSoundEnabled().observe([&] { ++notices; });
    view->stopAudio();
    EXPECT_EQ(notices, 0);
}

TEST_F(ContentViewTest, the_stop_button_leaves_the_sensor_running_and_disappearing_ends_it) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    view->leaveSufferingMode();
    EXPECT_TRUE(view->sensor().isRunning());
    view->onDisappear();
    EXPECT_FALSE(view->sensor().isRunning());
}

TEST_F(ContentViewTest, disappearing_stops_everything_and_then_the_sensor) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    std::vector<std::string> order;
    const auto enabled = view->audioEnabled().observe([&] { order.emplace_back("audioEnabled"); });
    const auto running = view->sensor().isRunning().observe([&] { order.emplace_back("sensor"); });
    view->onDisappear();
    EXPECT_THAT(order, ElementsAre("audioEnabled", "sensor"));
    EXPECT_THAT(calls, ElementsAre("keyboard stop", "fan stop", "bsod stop", "freeze stop"));
}

TEST_F(ContentViewTest, its_destruction_leaves_only_particle_timers_that_do_nothing) {
    makeReturningView().enterSufferingMode();
    view->setHingeCreak(true);
    view->runHardwareCheck();
    view.reset();
    machine.runLoop.advance(5);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
    EXPECT_EQ(machine.defaultCenter.observerCount(), 0U);
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

// The hardware check.

TEST_F(ContentViewTest, the_hardware_check_shows_its_results_after_a_fixed_pause) {
    addLid(100);
    machine.system.model = "MacBookPro18,3";
    machine.system.trusted = true;
    makeView().onAppear();
    view->runHardwareCheck();
    EXPECT_TRUE(view->isChecking());
    machine.runLoop.advance(1.499);
    EXPECT_TRUE(view->isChecking());
    EXPECT_FALSE(view->checkDone());
    EXPECT_FALSE(view->sensor().sensorFound());
    machine.runLoop.advance(0.001);
    EXPECT_FALSE(view->isChecking());
    EXPECT_TRUE(view->checkDone());
    EXPECT_TRUE(view->hasLidSensor());
    EXPECT_TRUE(view->hasAccessibility());
    EXPECT_TRUE(view->hasTrackpad());
}

TEST_F(ContentViewTest, the_results_come_in_their_order) {
    addLid(100);
    machine.system.model = "MacBook";
    machine.system.trusted = true;
    makeView();
    std::vector<std::string> order;
    const auto note = [&](const Observable<bool>& flag, std::string name) {
        return flag.observe([&order, name = std::move(name)] { order.push_back(name); });
    };
    const auto found = note(view->sensor().sensorFound(), "probe");
    const auto lidFlag = note(view->hasLidSensor(), "lid");
    const auto access = note(view->hasAccessibility(), "accessibility");
    const auto trackpad = note(view->hasTrackpad(), "trackpad");
    const auto done = note(view->checkDone(), "done");
    const auto checking = note(view->isChecking(), "checking");
    view->runHardwareCheck();
    machine.runLoop.advance(2);
    EXPECT_THAT(order, ElementsAre("checking", "probe", "lid", "accessibility", "trackpad", "done",
                                   "checking"));
}

TEST_F(ContentViewTest, a_sensor_found_only_through_the_fallback_counts_as_not_found) {
    makeView().runHardwareCheck();
    machine.runLoop.advance(2);
    EXPECT_TRUE(view->sensor().sensorFound());
    EXPECT_FALSE(view->hasLidSensor());
}

TEST_F(ContentViewTest, continue_with_every_check_failed_still_persists_and_leaves) {
    makeView().runHardwareCheck();
    machine.runLoop.advance(2);
    EXPECT_FALSE(view->hasLidSensor() || view->hasAccessibility() || view->hasTrackpad());
    view->confirmHardwareCheck();
    EXPECT_TRUE(machine.userDefaults.boolForKey("hardwareChecked"));
    EXPECT_EQ(view->screen(), Screen::Warning);
}

TEST_F(ContentViewTest, the_model_test_is_a_substring_in_any_letter_case) {
    makeView();
    for (const auto* model : {"MacBookPro18,3", "macbook", "X MACBOOK Y"}) {
        machine.system.model = model;
        EXPECT_TRUE(view->isRunningOnMacBook()) << model;
    }
    for (const auto* model : {"Mac14,2", "ThinkPad X1", "", "Mac Book"}) {
        machine.system.model = model;
        EXPECT_FALSE(view->isRunningOnMacBook()) << model;
    }
}

TEST_F(ContentViewTest, the_check_rows_tell_passed_and_failed_and_the_last_three_are_always_ready) {
    makeView();
    const auto failed = view->checkRows();
    EXPECT_EQ(failed[0].fail, "Lid sensor not found — this feature won't be available");
    EXPECT_EQ(failed[1].fail, "Accessibility permission needed — enable in System Settings");
    EXPECT_EQ(failed[2].fail, "No built-in trackpad — vibration won't work");
    std::vector<bool> passed;
    for (const CheckRow& each : failed)
        passed.push_back(each.passed);
    EXPECT_THAT(passed, ElementsAre(false, false, false, true, true, true));
    EXPECT_EQ(failed[5],
              (CheckRow{.feature = "Launch at login", .passed = true, .ok = "Ready", .fail = ""}));
}

// The info popup.

TEST_F(ContentViewTest, an_info_button_fills_the_popup_and_dismissal_leaves_its_texts) {
    makeReturningView().presentInfo(ToggleRowTexts::thermals);
    EXPECT_TRUE(view->showInfo());
    EXPECT_EQ(view->activeInfoLabel().get(), "Thermal Performance");
    view->dismissInfo();
    EXPECT_FALSE(view->showInfo());
    EXPECT_EQ(view->activeInfoLabel().get(), "Thermal Performance");
    EXPECT_EQ(view->activeInfoText().get(),
              "Original Windows fan acoustics. Authentic thermal management at its finest.\n\n"
              "Enable and enjoy. Trackpad vibration included.");
}

TEST_F(ContentViewTest, every_info_text_has_one_blank_line) {
    makeView();
    for (const ToggleRow& each : view->toggleRows()) {
        const auto blank = each.text.info.find("\n\n");
        EXPECT_NE(blank, std::string_view::npos) << each.text.label;
        EXPECT_EQ(each.text.info.find('\n', blank + 2), std::string_view::npos) << each.text.label;
    }
}

} // namespace
} // namespace quorvane
