#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Audio.h"
#include "platform/simulated/Faults.h"

namespace quorvane {

class SimulatedAudioEngine;

/// A sound file of the simulated machine.
struct SimulatedRecording {
    AudioFormat format;
    std::vector<float> samples;
    std::int64_t claimedFrames = 0;
    bool isAudio = true;
    /// Found only when it is decoded.
    bool isDamaged = false;
};

/// The audio state of the simulated machine, shared by the service and the objects that it creates,
/// which may outlive it. Main thread only.
struct SimulatedAudioMachine {
    std::shared_ptr<Faults> faults;
    std::map<std::filesystem::path, SimulatedRecording> files;
    bool outputDevicePresent = true;
    std::vector<std::weak_ptr<SimulatedAudioEngine>> engines;
    std::size_t engineStartCount = 0;
    std::size_t engineStopCount = 0;
    std::size_t holdCount = 0;

    /// The error of a call that fails; none if it does not.
    [[nodiscard]] std::optional<AudioError> error(Fault fault) const {
        if (!faults->fails(fault))
            return std::nullopt;
        return AudioError{faults->description(fault)};
    }
};

} // namespace quorvane
