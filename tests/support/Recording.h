#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "platform/Audio.h"

namespace quorvane {

/// Recorded stereo sound, to be compared with the expected one. Places and lengths are in frames.
class Recording {
public:
    /// `samples` are interleaved stereo.
    explicit Recording(std::vector<float> samples) : m_samples(std::move(samples)) {}

    [[nodiscard]] std::size_t length() const { return m_samples.size() / 2; }

    [[nodiscard]] float at(std::size_t frame, std::size_t channel) const {
        return m_samples.at(frame * 2 + channel);
    }

    /// First frame at or after `start` that is not silent; none if the rest is silent.
    [[nodiscard]] std::optional<std::size_t> soundFrom(std::size_t start) const;
    /// First frame at or after `start` at which a silence of at least `frames`, or up to the end,
    /// begins; the length if there is none.
    [[nodiscard]] std::size_t silenceFrom(std::size_t start, std::size_t frames) const;
    /// Largest difference from `sound`, of `length` frames from `soundStart` in it and `start`
    /// here. A mono sound is expected on both channels.
    [[nodiscard]] double largestDifference(std::size_t start, const PCMBuffer& sound,
                                           std::size_t soundStart, std::size_t length) const;

    /// `length` frames from `start` on.
    [[nodiscard]] Recording part(std::size_t start, std::size_t length) const;

private:
    [[nodiscard]] bool isSilent(std::size_t frame) const;

    std::vector<float> m_samples;
};

} // namespace quorvane
