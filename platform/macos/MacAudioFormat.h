#pragma once

#import <AVFAudio/AVFAudio.h>

#include "platform/Audio.h"
#include "platform/macos/MacStrings.h"

namespace quorvane {

/// The system's layout of such sound: 32-bit floats, one array a channel. Nil if there is none.
[[nodiscard]] inline AVAudioFormat* _Nullable standardAudioFormat(const AudioFormat& format) {
    return [[AVAudioFormat alloc] initStandardFormatWithSampleRate:format.sampleRate
                                                          channels:format.channels];
}

[[nodiscard]] inline AudioFormat toAudioFormat(AVAudioFormat* _Nonnull format) {
    return {.sampleRate = format.sampleRate, .channels = format.channelCount};
}

/// `error` may be nil: not every call that fails says why.
[[nodiscard]] inline AudioError toAudioError(NSError* _Nullable error) {
    return {.description = error ? toString(error.localizedDescription) : "unknown error"};
}

/// The sound of `buffer` in the system's layout; nil if that cannot be.
[[nodiscard]] AVAudioPCMBuffer* _Nullable deinterleaved(const PCMBuffer& buffer);

/// The other way: adds the sound of `from` to that of `buffer`, as far as there is room.
void append(AVAudioPCMBuffer* _Nonnull from, PCMBuffer& buffer);

} // namespace quorvane
