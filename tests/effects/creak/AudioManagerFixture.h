#pragma once

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "effects/creak/AudioManager.h"
#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {

inline constexpr AudioFormat format{.sampleRate = 1000, .channels = 1};
inline constexpr double clipLength = 2.4;
inline constexpr auto clipPath = "sounds/creaking.mp3";
inline constexpr auto completionLine = "✅ [AUDIO] Τελείωσε — ready for next";

/// The manager on a machine that has the clip.
class AudioManagerTest : public testing::Test {
protected:
    AudioManagerTest() {
        machine.audio.addFile(clipPath, format, std::vector<float>(2400, 0.5F));
        machine.bundle.addResource("creaking", "mp3", clipPath);
    }

    void load() {
        manager->loadSound("creaking", "mp3");
        ASSERT_TRUE(manager->isLoaded());
        machine.console.lines.clear();
    }

    [[nodiscard]] const SimulatedAudioVoice& node() const { return machine.audio.node(0); }

    [[nodiscard]] const std::vector<SimulatedSound>& sounds() const {
        return machine.audio.timeline();
    }

    SimulatedMachine machine;
    std::shared_ptr<AudioManager> manager = AudioManager::create(machine.platform());
};

} // namespace quorvane
