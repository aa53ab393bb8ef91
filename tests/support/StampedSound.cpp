#include "tests/support/StampedSound.h"

#include <cmath>

namespace quorvane {

namespace {

constexpr std::size_t steps = 700;
constexpr double loudest = 0.8;

float sampleOf(std::size_t step) {
    return static_cast<float>(loudest * static_cast<double>(step + 1) / (steps + 1));
}

std::optional<std::size_t> stepOf(float sample) {
    const double step = sample / loudest * (steps + 1) - 1;
    const double whole = std::round(step);
    if (whole < 0 || whole >= steps || std::abs(step - whole) > 0.25)
        return std::nullopt;
    return static_cast<std::size_t>(whole);
}

} // namespace

PCMBuffer stampedSound(std::uint32_t frames) {
    PCMBuffer sound{.format = {.sampleRate = 44100, .channels = 2},
                    .frameCapacity = frames,
                    .frameLength = frames,
                    .samples = {}};
    sound.samples.reserve(std::size_t{frames} * 2);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        sound.samples.push_back(sampleOf(frame / steps));
        sound.samples.push_back(sampleOf(frame % steps));
    }
    return sound;
}

std::optional<std::size_t> placeAt(const Recording& recording, std::size_t frame) {
    const auto hundreds = stepOf(recording.at(frame, 0));
    const auto rest = stepOf(recording.at(frame, 1));
    if (!hundreds || !rest)
        return std::nullopt;
    return *hundreds * steps + *rest;
}

std::optional<std::size_t> firstPlaced(const Recording& recording, std::size_t start) {
    for (std::size_t frame = start; frame < recording.length(); ++frame)
        if (placeAt(recording, frame))
            return frame;
    return std::nullopt;
}

std::size_t jumps(const Recording& recording, std::size_t loop) {
    const auto first = firstPlaced(recording, 0);
    if (!first)
        return 0;
    std::size_t count = 0;
    auto before = placeAt(recording, *first);
    for (std::size_t frame = *first + 1; frame < recording.length(); ++frame) {
        const auto place = placeAt(recording, frame);
        if (!place || (before && *place != (*before + 1) % loop))
            ++count;
        before = place;
    }
    return count;
}

} // namespace quorvane
