#include "platform/linux/audio/Voice.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace quorvane {

namespace {

// -1 dBFS.
constexpr float limiterThreshold = 0.891F;

bool isInsideASound(const std::vector<Part>& parts, std::int64_t place) {
    return std::any_of(parts.begin(), parts.end(), [place](const Part& part) {
        return place > part.start && place < part.end &&
               (place - part.start) % part.sound->frameLength != 0;
    });
}

} // namespace

Voice::Voice(std::vector<Part> parts, std::int64_t place, std::int64_t begin, float gain)
    : m_parts(std::move(parts)), m_origin(begin - place), m_begin(begin), m_rampBegin(begin),
      m_gainBefore(isInsideASound(m_parts, place) ? 0 : gain), m_gain(gain) {}

void Voice::setParts(std::vector<Part> parts) {
    m_parts = std::move(parts);
}

void Voice::setGain(float gain, std::int64_t frame) {
    if (gain == m_gain)
        return;
    m_gainBefore = gainAt(frame);
    m_gain = gain;
    m_rampBegin = frame;
}

void Voice::fadeOut(std::int64_t frame) {
    setGain(0, frame);
    m_end = std::min(m_end, frame + rampFrames);
}

std::int64_t Voice::end() const {
    return m_parts.empty() ? m_begin : std::min(m_end, m_origin + m_parts.back().end);
}

float Voice::gainAt(std::int64_t frame) const {
    const std::int64_t passed = frame - m_rampBegin;
    if (passed >= rampFrames)
        return m_gain;
    if (passed <= 0)
        return m_gainBefore;
    return m_gainBefore +
           (m_gain - m_gainBefore) * static_cast<float>(passed) / static_cast<float>(rampFrames);
}

void Voice::addTo(std::span<float> output, std::int64_t first) const {
    for (const Part& part : m_parts)
        add(part, output, first);
}

void Voice::add(const Part& part, std::span<float> output, std::int64_t first) const {
    const auto count = static_cast<std::int64_t>(output.size() / streamChannels);
    std::int64_t frame = std::max({first, m_begin, m_origin + part.start});
    const std::int64_t end = std::min({first + count, m_end, m_origin + part.end});
    const std::int64_t length = part.sound->frameLength;
    const std::size_t channels = part.sound->format.channels;
    // A third channel and more are left out.
    const std::size_t right = channels > 1 ? 1 : 0;
    std::int64_t place = frame < end ? (frame - m_origin - part.start) % length : 0;
    for (; frame < end; ++frame) {
        const float gain = gainAt(frame);
        const float* sample = &part.sound->samples[static_cast<std::size_t>(place) * channels];
        float* sum = &output[static_cast<std::size_t>(frame - first) * streamChannels];
        sum[0] += gain * sample[0];
        sum[1] += gain * sample[right];
        if (++place == length)
            place = 0;
    }
}

void limit(std::span<float> samples) {
    constexpr float room = 1 - limiterThreshold;
    for (float& sample : samples) {
        const float excess = std::abs(sample) - limiterThreshold;
        if (excess > 0)
            sample = std::copysign(limiterThreshold + room * excess / (room + excess), sample);
    }
}

} // namespace quorvane
