#pragma once

#import <AVFAudio/AVFAudio.h>

#include "platform/Audio.h"
#include "platform/macos/MacStrings.h"

namespace quorvane {

/// The standard format: 32-bit floats, one array per channel. Nil if there is none.
[[nodiscard]] inline AVAudioFormat* _Nullable standardAudioFormat(const AudioFormat& format) {
    return [[AVAudioFormat alloc] initStandardFormatWithSampleRate:format.sampleRate
                                                          channels:format.channels];
}

[[nodiscard]] inline AudioFormat toAudioFormat(AVAudioFormat* _Nonnull format) {
    return {.sampleRate = format.sampleRate, .channels = format.channelCount};
}

/// `error` may be nil: not every failed call sets it.
[[nodiscard]] inline AudioError toAudioError(NSError* _Nullable error) {
    return {.description = error ? toString(error.localizedDescription) : "unknown error"};
}

/// The sound of `buffer` in the standard format; nil on failure.
[[nodiscard]] AVAudioPCMBuffer* _Nullable deinterleaved(const PCMBuffer& buffer);

/// The reverse: appends the sound of `from` to `buffer`, as far as there is room.
void append(AVAudioPCMBuffer* _Nonnull from, PCMBuffer& buffer);

} // namespace quorvane
