#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <vector>

#include "platform/Audio.h"

namespace quorvane {

/// One uninterrupted stretch of sound: a buffer, heard from some place in it.
struct SimulatedSound {
    struct VolumeChange {
        double time = 0;
        float volume = 1;
    };

    /// Which node of the service, or which file player where there is a `file`; both are counted
    /// from 0 in the order of their creation.
    std::size_t node = 0;
    /// The file that a file player plays; empty for a node.
    std::filesystem::path file;
    std::shared_ptr<const PCMBuffer> buffer;
    /// Media time at which it starts, in seconds.
    double startTime = 0;
    /// Place in the buffer that is heard first, in seconds.
    double offset = 0;
    /// Media time at which it fell or falls silent, by itself or because it was told to; infinite
    /// for a loop that nobody has stopped.
    double stopTime = 0;
    /// The buffer comes again when it is over, until `stopTime`.
    bool loops = false;
    /// The volume at the start, and every change since; in the order of their times.
    std::vector<VolumeChange> volumes;

    /// The volume at media time `time`; that of the start before it, 1 if none was ever noted.
    [[nodiscard]] float volumeAt(double time) const;
    /// What is heard of it at media time `time` in `channel` of `channels` (1 or 2).
    [[nodiscard]] float sampleAt(double time, unsigned channel, unsigned channels) const;
};

using SimulatedTimeline = std::vector<SimulatedSound>;

} // namespace quorvane
