#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "effects/keyboard/KeyboardCrackManager.h"
#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {

inline constexpr auto crackPath = "sounds/keyboard.mp3";
inline constexpr auto startedLine =
    "⌨️ [KEYBOARD] Event tap started — global monitoring active";
inline constexpr auto failedLine =
    "⚠️ [KEYBOARD] Failed to create event tap — no permission?";

/// The manager on a machine with permission and with the sound.
class KeyboardCrackManagerTest : public testing::Test {
protected:
    KeyboardCrackManagerTest() {
        machine.audio.addFile(crackPath, {.sampleRate = 1000, .channels = 1},
                              std::vector<float>(200, 0.5F));
        machine.bundle.addResource("keyboard", "mp3", crackPath);
        machine.accessibility.trusted = true;
        // Some time has passed since boot.
        machine.runLoop.advance(10);
    }

    void makeManager() { manager = KeyboardCrackManager::create(machine.platform()); }

    void makeListening() {
        makeManager();
        manager->start();
    }

    /// Presses a key and runs the main queue.
    void press(std::int64_t autorepeat = 0) {
        EXPECT_TRUE(machine.eventTaps.send(
            {.type = TapEventType::KeyDown, .keyboardAutorepeat = autorepeat}));
        machine.runLoop.runMainQueue();
    }

    [[nodiscard]] std::size_t cracks() const { return machine.audio.timeline().size(); }

    SimulatedMachine machine;
    std::shared_ptr<KeyboardCrackManager> manager;
};

} // namespace quorvane
