#include "platform/simulated/audio/SimulatedSound.h"

#include <algorithm>
#include <cmath>

namespace quorvane {

float SimulatedSound::volumeAt(double time) const {
    float volume = volumes.empty() ? 1 : volumes.front().volume;
    for (const VolumeChange& change : volumes)
        if (change.time <= time)
            volume = change.volume;
    return volume;
}

float SimulatedSound::sampleAt(double time, unsigned channel, unsigned channels) const {
    if (time < startTime || time >= stopTime || buffer->frameLength == 0)
        return 0;
    // A tolerance, since times are whole nanoseconds and frames are not.
    double frame = std::floor((offset + time - startTime) * buffer->format.sampleRate + 1e-3);
    if (loops)
        frame = std::fmod(frame, buffer->frameLength);
    if (frame >= buffer->frameLength)
        return 0;
    const unsigned own = buffer->format.channels;
    const auto* samples = &buffer->samples[static_cast<std::size_t>(frame) * own];
    const float sample = channels == 1 && own == 2 ? (samples[0] + samples[1]) / 2
                                                   : samples[std::min(channel, own - 1)];
    return sample * volumeAt(time);
}

} // namespace quorvane
