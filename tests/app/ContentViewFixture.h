#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/ContentView.h"
#include "platform/simulated/SimulatedMachine.h"
#include "tests/support/FakeEffects.h"

namespace quorvane {

inline constexpr auto creakPath = "sounds/creaking.mp3";

/// A controller with fake effects on a simulated machine in virtual time.
class ContentViewFixture : public testing::Test {
protected:
    ContentViewFixture() {
        machine.audio.addFile(creakPath, {.sampleRate = 1000, .channels = 1},
                              std::vector<float>(2000, 0.5F));
        machine.bundle.addResource("creaking", "mp3", creakPath);
    }

    ContentView& makeView() {
        const auto factory = [this](std::string name, std::shared_ptr<FakeEffect>& effect) {
            return [this, name = std::move(name), &effect] {
                created.push_back(name);
                effect = std::make_shared<FakeEffect>(name, calls);
                effect->needsPermission = name == "keyboard";
                return effect;
            };
        };
        const FakeEffects effects{.keyboard = factory("keyboard", keyboard),
                                  .fan = factory("fan", fan),
                                  .bsod = factory("bsod", bsod),
                                  .freeze = factory("freeze", freeze)};
        view = std::make_unique<ContentView>(machine.platform(), startup, effects.list());
        return *view;
    }

    /// A view that has appeared, for a user who has done the hardware check before.
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

} // namespace quorvane
