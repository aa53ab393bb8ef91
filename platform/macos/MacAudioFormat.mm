#include "platform/macos/MacAudioFormat.h"

#include <algorithm>

namespace quorvane {

AVAudioPCMBuffer* deinterleaved(const PCMBuffer& buffer) {
    AVAudioFormat* format = standardAudioFormat(buffer.format);
    if (!format)
        return nil;
    AVAudioPCMBuffer* copy = [[AVAudioPCMBuffer alloc] initWithPCMFormat:format
                                                           frameCapacity:buffer.frameLength];
    float* const* channels = copy.floatChannelData;
    if (!channels)
        return nil;
    copy.frameLength = buffer.frameLength;
    const std::size_t count = buffer.format.channels;
    for (std::size_t channel = 0; channel < count; ++channel)
        for (std::size_t frame = 0; frame < buffer.frameLength; ++frame)
            channels[channel][frame] = buffer.samples[frame * count + channel];
    return copy;
}

void append(AVAudioPCMBuffer* from, PCMBuffer& buffer) {
    float* const* channels = from.floatChannelData;
    if (!channels)
        return;
    const std::size_t frames =
        std::min(from.frameLength, buffer.frameCapacity - buffer.frameLength);
    const std::size_t count = std::min(buffer.format.channels, from.format.channelCount);
    for (std::size_t channel = 0; channel < count; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame)
            buffer.samples[(buffer.frameLength + frame) * buffer.format.channels + channel] =
                channels[channel][frame];
    buffer.frameLength += static_cast<std::uint32_t>(frames);
}

} // namespace quorvane
