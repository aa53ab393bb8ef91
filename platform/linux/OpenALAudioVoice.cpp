#include "platform/linux/OpenALAudioVoice.h"

#include <algorithm>
#include <cmath>
#include <utility>

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

void OpenALAudioVoice::schedule(std::shared_ptr<const PCMBuffer> buffer, Completion completion) {
    m_scheduled.push_back({.buffer = std::move(buffer), .completion = std::move(completion)});
}

void OpenALAudioVoice::createSource() {
    const OpenALAudioLibrary& al = m_device->al();
    al.alGenSources(1, &m_source);
    al.alSourcei(m_source, AL_DIRECT_CHANNELS_SOFT, AL_TRUE);
    al.alSourcei(m_source, AL_SOURCE_RELATIVE, AL_TRUE);
}

void OpenALAudioVoice::upload(Scheduled& scheduled) {
    const OpenALAudioLibrary& al = m_device->al();
    const PCMBuffer& buffer = *scheduled.buffer;
    al.alGenBuffers(1, &scheduled.name);
    const auto rate = static_cast<ALsizei>(std::lround(buffer.format.sampleRate));
    const auto fill = [&](const std::vector<float>& samples) {
        const std::size_t values = std::size_t{buffer.frameLength} * 2;
        al.alBufferData(scheduled.name, AL_FORMAT_STEREO_FLOAT32, samples.data(),
                        static_cast<ALsizei>(values * sizeof(float)), rate);
    };
    if (buffer.format.channels == 2)
        fill(buffer.samples);
    else
        fill(inStereo(buffer));
    al.alSourceQueueBuffers(m_source, 1, &scheduled.name);
    ++m_uploadedCount;
}

OpenALAudioVoice::Completions OpenALAudioVoice::play(OpenALAudioDevice& device) {
    m_device = &device;
    m_playing = true;
    if (!m_source)
        createSource();
    Completions finished = takeFinished();
    const std::size_t before = m_uploadedCount;
    for (std::size_t i = before; i < m_scheduled.size(); ++i)
        upload(m_scheduled[i]);
    const ALint state = sourceState();
    // It may have run out between the two looks; the new ones then are not to be taken for heard.
    if (state == AL_STOPPED)
        takeHeads(before, finished);
    if (state != AL_PLAYING && m_uploadedCount > 0)
        m_device->al().alSourcePlay(m_source);
    return finished;
}

OpenALAudioVoice::Completions OpenALAudioVoice::pause() {
    if (!m_playing)
        return {};
    m_device->al().alSourcePause(m_source);
    Completions finished = takeFinished();
    m_playing = false;
    return finished;
}

OpenALAudioVoice::Completions OpenALAudioVoice::stop() {
    Completions dropped;
    if (m_source) {
        m_device->al().alSourceStop(m_source);
        takeHeads(m_uploadedCount, dropped);
        m_device->al().alDeleteSources(1, &m_source);
        m_source = 0;
    }
    for (Scheduled& scheduled : m_scheduled)
        dropped.push_back(std::move(scheduled.completion));
    m_scheduled.clear();
    m_playing = false;
    m_device = nullptr;
    return dropped;
}

OpenALAudioVoice::Completions OpenALAudioVoice::takeFinished() {
    Completions finished;
    if (m_source) {
        ALint processed = 0;
        m_device->al().alGetSourcei(m_source, AL_BUFFERS_PROCESSED, &processed);
        takeHeads(static_cast<std::size_t>(processed), finished);
    }
    return finished;
}

void OpenALAudioVoice::takeHeads(std::size_t count, Completions& completions) {
    const OpenALAudioLibrary& al = m_device->al();
    for (; count > 0; --count) {
        ALuint name = 0;
        al.alSourceUnqueueBuffers(m_source, 1, &name);
        al.alDeleteBuffers(1, &name);
        completions.push_back(std::move(m_scheduled.front().completion));
        m_scheduled.pop_front();
        --m_uploadedCount;
    }
}

ALint OpenALAudioVoice::sourceState() const {
    ALint state = AL_INITIAL;
    m_device->al().alGetSourcei(m_source, AL_SOURCE_STATE, &state);
    return state;
}

std::optional<std::chrono::nanoseconds> OpenALAudioVoice::timeToEnd() const {
    if (!isSounding())
        return std::nullopt;
    ALint offset = 0;
    m_device->al().alGetSourcei(m_source, AL_SAMPLE_OFFSET, &offset);
    const PCMBuffer& head = *m_scheduled.front().buffer;
    const double seconds =
        (static_cast<double>(head.frameLength) - offset) / head.format.sampleRate;
    return std::chrono::nanoseconds(std::llround(seconds * 1e9));
}

} // namespace quorvane
