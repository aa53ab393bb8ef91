#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/Audio.h"

namespace quorvane {

/// The layout of what is played: 44.1 kHz, as the program's own sounds, interleaved stereo.
inline constexpr int streamRate = 44100;
inline constexpr std::size_t streamChannels = 2;

/// A change of gain takes 5 ms, too slow for a click and too fast to be noticed.
inline constexpr std::int64_t rampFrames = streamRate / 200;

/// The end of what has none, in frames: far away, with room for sums.
inline constexpr std::int64_t endless = std::int64_t{1} << 56;

/// A sound on a track's own line of frames: begins at `start`, is repeated until `end`.
struct Part {
    /// At `streamRate`, one channel or more, at least one frame.
    std::shared_ptr<const PCMBuffer> sound;
    std::int64_t start = 0;
    std::int64_t end = 0;
};

/// A stretch of a track, placed on the frames of the output stream. A pure function from frames to
/// samples: any range that is not before its last change can be rendered, and rendered again.
class Voice {
public:
    /// Plays `parts` from frame `place` of their line on, at frame `begin` of the stream. In the
    /// middle of a sound the gain rises from 0.
    Voice(std::vector<Part> parts, std::int64_t place, std::int64_t begin, float gain);

    /// Plays these parts instead, from the current line on.
    void setParts(std::vector<Part> parts);
    /// Ramps to `gain`, from frame `frame` of the stream on.
    void setGain(float gain, std::int64_t frame);
    /// Ramps to silence and ends.
    void fadeOut(std::int64_t frame);

    /// The stream's frame after the last one.
    [[nodiscard]] std::int64_t end() const;

    /// Where the track is at the stream's frame `frame`.
    [[nodiscard]] std::int64_t placeAt(std::int64_t frame) const { return frame - m_origin; }

    /// Adds its samples to `output`, interleaved stereo from frame `first` of the stream on.
    void addTo(std::span<float> output, std::int64_t first) const;

private:
    [[nodiscard]] float gainAt(std::int64_t frame) const;
    void add(const Part& part, std::span<float> output, std::int64_t first) const;

    std::vector<Part> m_parts;
    // The stream's frames of the line's frame 0, of the first frame that is heard, and after the
    // last.
    std::int64_t m_origin;
    std::int64_t m_begin;
    std::int64_t m_end = endless;
    // A ramp from one gain to another from the stream's frame m_rampBegin on.
    std::int64_t m_rampBegin;
    float m_gainBefore;
    float m_gain;
};

/// Bends what exceeds -1 dBFS so that it stays below full scale, and leaves the rest as it is.
void limit(std::span<float> samples);

} // namespace quorvane
