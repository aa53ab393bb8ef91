#include "app/OrrowinApp.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Screen = ContentView::Screen;

/// The program with its real effects, on a notebook that has everything, in virtual time.
class OrrowinAppTest : public testing::Test {
protected:
    OrrowinAppTest() {
        addSound("creaking", 6);
        addSound("tractor", 8);
        addSound("fanmac", 2);
        addSound("keyboard", 0.2);
        lid->setAngle(100);
        machine.system.trusted = true;
        machine.system.model = "MacBookPro18,3";
        // A machine that has been up for a moment.
        machine.runLoop.advance(10);
    }

    ~OrrowinAppTest() override {
        if (view)
            view->onDisappear();
    }

    void addSound(const std::string& name, double seconds) {
        const std::string path = "sounds/" + name + ".mp3";
        machine.audio.addFile(path, {.sampleRate = 100, .channels = 1},
                              std::vector<float>(static_cast<std::size_t>(seconds * 100), 0.5F));
        machine.bundle.addResource(name, "mp3", path);
    }

    /// Opens the window for a person who has been here before, on the control panel.
    void enterPanel() {
        machine.userDefaults.setBool("hardwareChecked", true);
        app.emplace(machine.platform());
        view = app->makeContentView();
        view->onAppear();
        view->enterSufferingMode();
        idle = machine.runLoop.pendingCount();
    }

    void turn(std::string_view label, bool on) {
        for (const ToggleRow& row : view->toggleRows())
            if (row.text.label == label) {
                row.setOn(on);
                return;
            }
        ADD_FAILURE() << "no row " << label;
    }

    [[nodiscard]] std::vector<bool> switches() const {
        std::vector<bool> states;
        for (const ToggleRow& row : view->toggleRows())
            states.push_back(row.isOn->get());
        return states;
    }

    void press() {
        machine.eventTaps.pressKey();
        machine.runLoop.runMainQueue();
    }

    void moveLid() {
        const double start = machine.runLoop.currentMediaTime();
        lid->setAngle([start](double time) { return 100 + 20 * std::min(time - start, 2.0); });
    }

    void wakeUp() { machine.workspace.post("NSWorkspaceDidWakeNotification"); }

    /// What sounds now: the files by name, and "node" for a node.
    [[nodiscard]] std::vector<std::string> sounding() const {
        std::vector<std::string> names;
        const double now = machine.runLoop.currentMediaTime();
        for (const SimulatedSound& sound : machine.audio.timeline())
            if (sound.startTime <= now && now < sound.stopTime)
                names.push_back(sound.file.empty() ? "node" : sound.file.stem().string());
        return names;
    }

    /// The panels that are up, by how they differ.
    [[nodiscard]] std::vector<std::string> panels() const {
        std::vector<std::string> kinds;
        for (const auto& panel : machine.screens.shownPanels())
            kinds.push_back(panel->calls.at(2) == "opaque yes" ? "stop screen" : "freeze");
        return kinds;
    }

    SimulatedMachine machine;
    std::shared_ptr<SimulatedHIDDevice> lid = machine.hid.addDevice(0x8104);
    std::optional<OrrowinApp> app;
    std::unique_ptr<ContentView> view;
    /// Timers while the panel is shown and every switch is off.
    std::size_t idle = 0;
};

TEST_F(OrrowinAppTest, the_window_has_its_title_and_its_size) {
    EXPECT_EQ(OrrowinApp::windowTitle, "Quorvane");
    EXPECT_EQ(OrrowinApp::windowWidth, 550);
    EXPECT_EQ(OrrowinApp::windowHeight, 780);
}

TEST_F(OrrowinAppTest, the_startup_experience_is_live_before_there_is_a_window) {
    app.emplace(machine.platform());
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [STARTUP] tractor.mp3 loaded",
                            "✅ [RUMBLE] Buffer generated: 25.0Hz + 12.5Hz sub"));
    wakeUp();
    EXPECT_THAT(sounding(), ElementsAre("tractor", "node"));
}

TEST_F(OrrowinAppTest, the_window_makes_its_effects_in_their_order) {
    app.emplace(machine.platform());
    machine.console.lines.clear();
    view = app->makeContentView();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [KEYBOARD] keyboard.mp3 loaded", "✅ [FAN] fanmac.mp3 loaded"));
    view->onAppear();
    EXPECT_EQ(machine.console.lines.back(), "✅ Φορτώθηκε: creaking.mp3 (6.0s)");
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, true));
}

TEST_F(OrrowinAppTest, a_first_launch_leads_through_the_check_and_the_warning_to_the_panel) {
    app.emplace(machine.platform());
    view = app->makeContentView();
    view->onAppear();
    EXPECT_EQ(view->screen(), Screen::HardwareCheck);
    view->runHardwareCheck();
    machine.runLoop.advance(1.5);
    for (const CheckRow& row : view->checkRows())
        EXPECT_TRUE(row.passed) << row.feature;
    view->confirmHardwareCheck();
    EXPECT_EQ(view->screen(), Screen::Warning);
    view->enterSufferingMode();
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
    EXPECT_TRUE(view->sensor().isRunning());
}

// A switch each.

TEST_F(OrrowinAppTest, build_quality_creaks_while_the_lid_moves) {
    enterPanel();
    turn("Build quality", true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
    moveLid();
    machine.runLoop.advance(1);
    EXPECT_THAT(sounding(), ElementsAre("node"));
    machine.runLoop.advance(2);
    EXPECT_THAT(sounding(), IsEmpty());
}

TEST_F(OrrowinAppTest, keyboard_cracks_at_a_key) {
    enterPanel();
    press();
    EXPECT_THAT(sounding(), IsEmpty());
    turn("Keyboard", true);
    press();
    EXPECT_THAT(sounding(), ElementsAre("keyboard"));
    turn("Keyboard", false);
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
}

TEST_F(OrrowinAppTest, thermals_roars_and_buzzes) {
    enterPanel();
    turn("Thermals", true);
    machine.runLoop.advance(60);
    EXPECT_THAT(sounding(), ElementsAre("fanmac"));
    EXPECT_THAT(machine.haptics.pulses(), SizeIs(2400));
    turn("Thermals", false);
    machine.runLoop.advance(60);
    EXPECT_THAT(sounding(), IsEmpty());
    EXPECT_THAT(machine.haptics.pulses(), SizeIs(2400));
}

TEST_F(OrrowinAppTest, stability_shows_a_stop_screen_every_fifteen_seconds_for_five) {
    enterPanel();
    turn("Stability", true);
    machine.runLoop.advance(14.99);
    EXPECT_THAT(panels(), IsEmpty());
    for (int i = 0; i < 3; ++i) {
        machine.runLoop.advance(0.02);
        EXPECT_THAT(panels(), ElementsAre("stop screen"));
        machine.runLoop.advance(5.03);
        EXPECT_THAT(panels(), IsEmpty());
        machine.runLoop.advance(9.95);
    }
}

TEST_F(OrrowinAppTest, performance_freezes_within_forty_seconds_for_at_most_four) {
    enterPanel();
    turn("Performance", true);
    machine.runLoop.advance(19.99);
    EXPECT_THAT(machine.screens.panels(), IsEmpty());
    machine.runLoop.advance(20.02);
    ASSERT_THAT(machine.screens.panels(), SizeIs(1));
    EXPECT_EQ(machine.screens.panels()[0]->calls.at(2), "opaque no");
    machine.runLoop.advance(4);
    EXPECT_EQ(machine.screens.panels()[0]->calls.back(), "out");
}

TEST_F(OrrowinAppTest, performance_switched_on_twice_is_one_chain_of_freezes) {
    enterPanel();
    turn("Performance", true);
    turn("Performance", true);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1);
}

TEST_F(OrrowinAppTest, performance_switched_off_and_on_in_a_freeze_is_two_chains) {
    enterPanel();
    turn("Performance", true);
    for (int i = 0; i < 81 && panels().empty(); ++i)
        machine.runLoop.advance(0.5);
    ASSERT_THAT(panels(), ElementsAre("freeze"));
    turn("Performance", false);
    EXPECT_THAT(panels(), IsEmpty());
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1) << "the end of the freeze still comes";
    turn("Performance", true);
    machine.runLoop.advance(4);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 2) << "two waits side by side";
    machine.runLoop.advance(16);
    EXPECT_THAT(machine.screens.panels(), SizeIs(1));
    view->leaveSufferingMode();
    EXPECT_EQ(machine.runLoop.pendingCount(), idle + 1) << "the older wait is not held";
    machine.runLoop.advance(60);
    EXPECT_THAT(machine.screens.panels(), SizeIs(1));
    EXPECT_EQ(machine.runLoop.pendingCount(), idle);
}

TEST_F(OrrowinAppTest, startup_decides_whether_a_wake_up_is_heard) {
    enterPanel();
    turn("Startup", false);
    wakeUp();
    EXPECT_THAT(sounding(), IsEmpty());
    turn("Startup", true);
    wakeUp();
    EXPECT_THAT(sounding(), ElementsAre("tractor", "node"));
    machine.runLoop.advance(8);
    EXPECT_THAT(sounding(), IsEmpty());
}

// All of it.

TEST_F(OrrowinAppTest, the_stop_button_ends_everything_at_once) {
    enterPanel();
    for (const ToggleRow& row : view->toggleRows())
        row.setOn(true);
    EXPECT_THAT(switches(), ElementsAre(true, true, true, true, true, true));
    machine.runLoop.advance(40);
    // A stop screen at 45 s; what else is up then is as may be.
    machine.runLoop.advance(5.5);
    moveLid();
    machine.runLoop.advance(0.5);
    press();
    EXPECT_THAT(sounding(), testing::UnorderedElementsAre("fanmac", "node", "keyboard"));
    EXPECT_THAT(panels(), testing::Contains("stop screen"));
    const auto pulses = machine.haptics.pulses().size();

    view->leaveSufferingMode();
    EXPECT_EQ(view->screen(), Screen::Warning);
    EXPECT_THAT(switches(), Each(false));
    EXPECT_THAT(switches(), SizeIs(6));
    EXPECT_THAT(panels(), IsEmpty());
    EXPECT_EQ(machine.eventTaps.openCount(), 0U);
    EXPECT_EQ(machine.audio.holdCount(), 0U);
    EXPECT_THAT(sounding(), ElementsAre("keyboard")) << "the last crack sounds to its end";
    machine.runLoop.advance(60);
    EXPECT_THAT(sounding(), IsEmpty());
    EXPECT_THAT(panels(), IsEmpty());
    EXPECT_EQ(machine.haptics.pulses().size(), pulses);
    EXPECT_EQ(machine.runLoop.pendingCount(), idle) << "the sensor and the particles";
    wakeUp();
    EXPECT_THAT(sounding(), IsEmpty());
}

TEST_F(OrrowinAppTest, the_stop_button_leaves_a_startup_sequence_to_its_end) {
    enterPanel();
    wakeUp();
    machine.runLoop.advance(1);
    view->leaveSufferingMode();
    EXPECT_THAT(sounding(), ElementsAre("tractor", "node"));
    machine.runLoop.advance(7);
    EXPECT_THAT(sounding(), IsEmpty());
    EXPECT_EQ(machine.console.lines.back(), "🚜 [STARTUP] Sequence complete");
}

TEST_F(OrrowinAppTest, closing_the_window_and_the_program_leaves_nothing_behind) {
    enterPanel();
    for (const ToggleRow& row : view->toggleRows())
        row.setOn(true);
    machine.runLoop.advance(16);
    view->onDisappear();
    EXPECT_THAT(panels(), IsEmpty());
    EXPECT_THAT(sounding(), IsEmpty());
    EXPECT_FALSE(view->sensor().isRunning());
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "the particles";
    view.reset();
    EXPECT_EQ(machine.defaultCenter.observerCount(), 0U);
    EXPECT_EQ(machine.workspace.observerCount(), 1U) << "wake-ups, for the program";
    app.reset();
    EXPECT_EQ(machine.workspace.observerCount(), 0U);
    EXPECT_EQ(machine.audio.runningEngineCount(), 0U);
    machine.runLoop.advance(60);
    EXPECT_THAT(sounding(), IsEmpty());
}

} // namespace
} // namespace quorvane
