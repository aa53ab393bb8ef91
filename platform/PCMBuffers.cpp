#include "platform/PCMBuffers.h"

#include <cmath>
#include <cstddef>
#include <exception>

namespace quorvane {

std::shared_ptr<PCMBuffer> makePCMBuffer(const AudioFormat& format, std::uint32_t frameCapacity) {
    if (format.channels == 0 || !(format.sampleRate > 0))
        return nullptr;
    try {
        auto buffer = std::make_shared<PCMBuffer>();
        buffer->format = format;
        buffer->frameCapacity = frameCapacity;
        buffer->samples.resize(std::size_t{frameCapacity} * format.channels);
        return buffer;
    } catch (const std::exception&) {
        // No memory, or more samples than a vector can have.
        return nullptr;
    }
}

std::optional<AudioFormat> makeStandardFormat(double sampleRate, unsigned channels) {
    if (!std::isfinite(sampleRate) || sampleRate <= 0 || channels < 1 || channels > 2)
        return std::nullopt;
    return AudioFormat{.sampleRate = sampleRate, .channels = channels};
}

} // namespace quorvane
