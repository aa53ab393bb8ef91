#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <vector>

#include "platform/Audio.h"

namespace quorvane {

/// One uninterrupted playback of a buffer, from some position in it.
struct SimulatedSound {
    struct VolumeChange {
        double time = 0;
        float volume = 1;
    };

    /// The file that a file player plays; empty for a node.
    std::filesystem::path file;
    std::shared_ptr<const PCMBuffer> buffer;
    /// Media time at which it starts, in seconds.
    double startTime = 0;
    /// Position in the buffer at the start, in seconds.
    double offset = 0;
    /// Media time at which it ended or will end; infinite for an endless loop that was not stopped.
    double stopTime = 0;
    /// The buffer is repeated until `stopTime`.
    bool loops = false;
    /// The volume at the start, and its changes, in the order of their times.
    std::vector<VolumeChange> volumes;

    /// The volume at media time `time`; before the start, the initial one; 1 if none is recorded.
    [[nodiscard]] float volumeAt(double time) const;
    /// Its sample at media time `time` in `channel` of `channels` (1 or 2).
    [[nodiscard]] float sampleAt(double time, unsigned channel, unsigned channels) const;
};

using SimulatedTimeline = std::vector<SimulatedSound>;

} // namespace quorvane
