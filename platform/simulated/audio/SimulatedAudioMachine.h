#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Audio.h"

namespace quorvane {

class SimulatedAudioEngine;

/// The faults that a test can set.
enum class AudioFault {
    /// Every engine refuses to start.
    EngineStart,
    /// No buffer can be made.
    BufferCreation,
    /// Buffers are made without memory for samples. The fault's description is not used.
    BufferSamples,
    /// No file can be opened.
    FileOpen,
    /// No file can be read once it is open.
    FileRead,
    /// No file player can be made.
    FilePlayerCreation,
    /// There is no standard format. The fault's description is not used.
    StandardFormat,
};

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
    std::map<AudioFault, std::string> faults;
    std::map<std::filesystem::path, SimulatedRecording> files;
    bool outputDevicePresent = true;
    std::vector<std::weak_ptr<SimulatedAudioEngine>> engines;
    std::size_t engineStartCount = 0;
    std::size_t engineStopCount = 0;
    std::size_t holdCount = 0;

    [[nodiscard]] std::optional<AudioError> fault(AudioFault fault) const {
        const auto found = faults.find(fault);
        if (found == faults.end())
            return std::nullopt;
        return AudioError{found->second};
    }
};

} // namespace quorvane
