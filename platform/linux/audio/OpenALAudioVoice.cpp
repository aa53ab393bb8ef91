#include "platform/linux/audio/OpenALAudioVoice.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/audio/OpenALAudioSamples.h"

namespace quorvane {

void OpenALAudioVoice::schedule(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                                Completion completion) {
    // Nothing, over and over, would stop OpenAL.
    const bool loops = options == BufferOptions::Loops && buffer->frameLength > 0;
    m_scheduled.push_back(
        {.buffer = std::move(buffer), .loops = loops, .completion = std::move(completion)});
}

void OpenALAudioVoice::setVolume(float volume) {
    m_volume = std::clamp(volume, 0.0F, 1.0F);
    if (m_source)
        m_device->al().alSourcef(m_source, AL_GAIN, m_volume);
}

void OpenALAudioVoice::createSource() {
    const OpenALAudioLibrary& al = m_device->al();
    m_source = createStereoSource(al);
    al.alSourcef(m_source, AL_GAIN, m_volume);
}

void OpenALAudioVoice::upload(Scheduled& scheduled) {
    const OpenALAudioLibrary& al = m_device->al();
    scheduled.name = uploadSound(al, *scheduled.buffer);
    al.alSourceQueueBuffers(m_source, 1, &scheduled.name);
    ++m_uploadedCount;
}

/// What follows a loop waits for ever, so it stays here.
void OpenALAudioVoice::uploadUpToLoop() {
    while (m_uploadedCount < m_scheduled.size() &&
           (m_uploadedCount == 0 || !m_scheduled[m_uploadedCount - 1].loops))
        upload(m_scheduled[m_uploadedCount]);
    loopWhenAlone();
}

/// A source repeats all of its queue, so it is told to only once the rest has been taken out. Until
/// then the loop sounds for the first time, without a gap before it.
void OpenALAudioVoice::loopWhenAlone() {
    if (m_uploadedCount == 1 && m_scheduled.front().loops)
        m_device->al().alSourcei(m_source, AL_LOOPING, AL_TRUE);
}

OpenALAudioVoice::Completions OpenALAudioVoice::play(OpenALAudioDevice& device) {
    m_device = &device;
    m_playing = true;
    if (!m_source)
        createSource();
    Completions finished = takeFinished();
    const std::size_t before = m_uploadedCount;
    uploadUpToLoop();
    const ALint state = stateOf(m_device->al(), m_source);
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
        m_device->al().alSourcei(m_source, AL_LOOPING, AL_FALSE);
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
        if (processed > 0)
            loopWhenAlone();
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

std::optional<std::chrono::nanoseconds> OpenALAudioVoice::timeToEnd() const {
    if (!isSounding())
        return std::nullopt;
    if (m_scheduled.front().loops)
        return std::chrono::nanoseconds::max();
    ALint offset = 0;
    m_device->al().alGetSourcei(m_source, AL_SAMPLE_OFFSET, &offset);
    const PCMBuffer& head = *m_scheduled.front().buffer;
    const double seconds =
        (static_cast<double>(head.frameLength) - offset) / head.format.sampleRate;
    return std::chrono::nanoseconds(std::llround(seconds * 1e9));
}

} // namespace quorvane
