#include "platform/linux/audio/Resampling.h"

#include <cmath>
#include <cstdint>

#include <soxr.h>

#include "platform/PCMBuffers.h"
#include "platform/linux/audio/Voice.h"

namespace quorvane {

std::shared_ptr<const PCMBuffer> atStreamRate(std::shared_ptr<const PCMBuffer> sound) {
    if (!sound || sound->frameLength == 0)
        return nullptr;
    const AudioFormat format{.sampleRate = streamRate, .channels = sound->format.channels};
    if (sound->format == format)
        return sound;
    const double frames = std::ceil(sound->frameLength * streamRate / sound->format.sampleRate);
    if (frames > UINT32_MAX)
        return nullptr;
    auto converted = makePCMBuffer(format, static_cast<std::uint32_t>(frames));
    if (!converted)
        return nullptr;
    std::size_t produced = 0;
    if (soxr_oneshot(sound->format.sampleRate, format.sampleRate, format.channels,
                     sound->samples.data(), sound->frameLength, nullptr, converted->samples.data(),
                     converted->frameCapacity, &produced, nullptr, nullptr, nullptr) != nullptr ||
        produced == 0)
        return nullptr;
    converted->frameLength = static_cast<std::uint32_t>(produced);
    return converted;
}

} // namespace quorvane
