#pragma once

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/OrrowinApp.h"
#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {

/// The program with its real effects, on a notebook that has everything, in virtual time.
class OrrowinAppFixture : public testing::Test {
protected:
    OrrowinAppFixture() {
        addSound("creaking", 6);
        addSound("tractor", 8);
        addSound("fanmac", 2);
        addSound("keyboard", 0.2);
        lid->setAngle(100);
        machine.accessibility.trusted = true;
        machine.system.model = "MacBookPro18,3";
        // Some time has passed since boot.
        machine.runLoop.advance(10);
    }

    ~OrrowinAppFixture() override {
        if (view)
            view->onDisappear();
    }

    void addSound(const std::string& name, double seconds) {
        const std::string path = "sounds/" + name + ".mp3";
        machine.audio.addFile(path, {.sampleRate = 100, .channels = 1},
                              std::vector<float>(static_cast<std::size_t>(seconds * 100), 0.5F));
        machine.bundle.addResource(name, "mp3", path);
    }

    /// Opens the control panel, for a user who has done the hardware check before.
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

    /// The kinds of the panels that are shown.
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

} // namespace quorvane
