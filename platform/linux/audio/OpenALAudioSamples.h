#pragma once

#include "platform/Audio.h"
#include "platform/linux/audio/OpenALAudioLibrary.h"

namespace quorvane {

/// A new source that passes two channels through as they are, placed nowhere.
[[nodiscard]] ALuint createStereoSource(const OpenALAudioLibrary& al);

/// A new OpenAL buffer with the sound on two channels.
[[nodiscard]] ALuint uploadSound(const OpenALAudioLibrary& al, const PCMBuffer& sound);

/// The state of a source, AL_PLAYING and its like.
[[nodiscard]] ALint stateOf(const OpenALAudioLibrary& al, ALuint source);

} // namespace quorvane
