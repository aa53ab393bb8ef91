#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "effects/startup/StartupSoundManager.h"
#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {

inline constexpr auto tractorPath = "sounds/tractor.mp3";
/// Length of the clip that the fixture's machine has, in seconds.
inline constexpr double clipLength = 8;

inline constexpr auto loadedLine = "✅ [STARTUP] tractor.mp3 loaded";
inline constexpr auto bufferLine = "✅ [RUMBLE] Buffer generated: 25.0Hz + 12.5Hz sub";
inline constexpr auto playingLine = "🚜 [STARTUP] Playing tractor + rumble + haptic!";
inline constexpr auto rumbleLine = "🔊 [RUMBLE] Started with 3.0s ramp-up";
inline constexpr auto rumbleStoppedLine = "🔊 [RUMBLE] Stopped";
inline constexpr auto hapticLine = "📳 [HAPTIC] Started with ramp-up";
inline constexpr auto hapticStoppedLine = "📳 [HAPTIC] Stopped";
inline constexpr auto completeLine = "🚜 [STARTUP] Sequence complete";

/// A startup experience on a simulated machine that can wake up.
class StartupFixture : public testing::Test {
protected:
    StartupFixture() {
        machine.audio.addFile(
            tractorPath, {.sampleRate = 100, .channels = 1},
            std::vector<float>(static_cast<std::size_t>(clipLength * 100), 0.25F));
        machine.bundle.addResource("tractor", "mp3", tractorPath);
        machine.application.active = false;
    }

    void makeManager() {
        manager = StartupSoundManager::create(machine.platform());
        machine.console.lines.clear();
    }

    void wakeUp() { machine.workspace.post("NSWorkspaceDidWakeNotification"); }

    void advance(double seconds) { machine.runLoop.advance(seconds); }

    /// The rumble's node, the only one.
    [[nodiscard]] const SimulatedAudioVoice& rumble() const { return machine.audio.node(0); }

    [[nodiscard]] const SimulatedAudioFilePlayer& tractor() const {
        return machine.audio.filePlayer(0);
    }

    [[nodiscard]] const auto& pulses() const { return machine.haptics.pulses(); }

    SimulatedMachine machine;
    std::shared_ptr<StartupSoundManager> manager;
};

} // namespace quorvane
