#include "platform/linux/audio/OpenALAudioSamples.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace quorvane {

namespace {

/// The buffer's sound on two channels. OpenAL passes two channels through as they are, while it
/// would place a single one in space, at another level. A third channel and more are left out.
std::vector<float> inStereo(const PCMBuffer& buffer) {
    const std::size_t channels = buffer.format.channels;
    std::vector<float> stereo(std::size_t{buffer.frameLength} * 2);
    for (std::size_t frame = 0; frame < buffer.frameLength; ++frame) {
        stereo[frame * 2] = buffer.samples[frame * channels];
        stereo[frame * 2 + 1] =
            buffer.samples[frame * channels + std::min<std::size_t>(1, channels - 1)];
    }
    return stereo;
}

} // namespace

ALuint createStereoSource(const OpenALAudioLibrary& al) {
    ALuint source = 0;
    al.alGenSources(1, &source);
    al.alSourcei(source, AL_DIRECT_CHANNELS_SOFT, AL_TRUE);
    al.alSourcei(source, AL_SOURCE_RELATIVE, AL_TRUE);
    return source;
}

ALuint uploadSound(const OpenALAudioLibrary& al, const PCMBuffer& sound) {
    ALuint name = 0;
    al.alGenBuffers(1, &name);
    const auto rate = static_cast<ALsizei>(std::lround(sound.format.sampleRate));
    const auto fill = [&](const std::vector<float>& samples) {
        const std::size_t values = std::size_t{sound.frameLength} * 2;
        al.alBufferData(name, AL_FORMAT_STEREO_FLOAT32, samples.data(),
                        static_cast<ALsizei>(values * sizeof(float)), rate);
    };
    if (sound.format.channels == 2)
        fill(sound.samples);
    else
        fill(inStereo(sound));
    return name;
}

ALint stateOf(const OpenALAudioLibrary& al, ALuint source) {
    ALint state = AL_INITIAL;
    al.alGetSourcei(source, AL_SOURCE_STATE, &state);
    return state;
}

} // namespace quorvane
