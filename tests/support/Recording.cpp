#include "tests/support/Recording.h"

#include <algorithm>
#include <cmath>

namespace quorvane {

bool Recording::isSilent(std::size_t frame) const {
    return std::abs(at(frame, 0)) < 1e-6F && std::abs(at(frame, 1)) < 1e-6F;
}

std::optional<std::size_t> Recording::soundFrom(std::size_t start) const {
    for (std::size_t frame = start; frame < length(); ++frame)
        if (!isSilent(frame))
            return frame;
    return std::nullopt;
}

std::size_t Recording::silenceFrom(std::size_t start, std::size_t frames) const {
    std::size_t quiet = 0;
    for (std::size_t frame = start; frame < length(); ++frame) {
        quiet = isSilent(frame) ? quiet + 1 : 0;
        if (quiet == frames)
            return frame + 1 - frames;
    }
    return length() - quiet;
}

Recording Recording::part(std::size_t start, std::size_t length) const {
    const auto from = m_samples.begin() + static_cast<std::ptrdiff_t>(start * 2);
    return Recording({from, from + static_cast<std::ptrdiff_t>(length * 2)});
}

double Recording::largestDifference(std::size_t start, const PCMBuffer& sound,
                                    std::size_t soundStart, std::size_t length) const {
    const std::size_t channels = sound.format.channels;
    double largest = 0;
    for (std::size_t i = 0; i < length; ++i)
        for (std::size_t channel = 0; channel < 2; ++channel) {
            const double meant =
                sound.samples.at((soundStart + i) * channels + std::min(channel, channels - 1));
            largest = std::max(largest, std::abs(at(start + i, channel) - meant));
        }
    return largest;
}

} // namespace quorvane
