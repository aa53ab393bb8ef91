#include "platform/linux/audio/OpenALAudioClip.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "platform/linux/audio/OpenALAudioSamples.h"

namespace quorvane {

namespace {

// A source ends when its last frame has been mixed, which is ahead of the clock by less than this;
// one that stops earlier has lost its device.
constexpr OpenALAudioClip::Seconds longestBuffer{0.5};

} // namespace

double OpenALAudioClip::duration() const {
    return m_frames / m_format.sampleRate;
}

double OpenALAudioClip::place() const {
    if (!m_sounding)
        return m_place;
    ALint offset = 0;
    m_device->al().alGetSourcei(m_sources.at(m_current).name, AL_SAMPLE_OFFSET, &offset);
    return std::fmod(offset / m_format.sampleRate, duration());
}

void OpenALAudioClip::setPlace(double seconds) {
    const bool sounds = m_sounding;
    if (sounds)
        fadeOut();
    m_place = std::clamp(seconds, 0.0, duration());
    if (sounds)
        start(lengthFromPlace());
    if (m_request)
        request(Clock::now());
}

void OpenALAudioClip::setVolume(float volume) {
    m_volume = std::clamp(volume, 0.0F, 1.0F);
    if (m_sounding)
        m_device->al().alSourcef(m_sources.at(m_current).name, AL_GAIN, m_volume);
}

void OpenALAudioClip::play(OpenALAudioDevice& device) {
    if (m_sounding)
        return;
    m_request.reset();
    enterDevice(device);
    start(lengthFromPlace());
}

void OpenALAudioClip::request(Clock::time_point time) {
    m_request = {.time = time, .left = lengthFromPlace()};
}

void OpenALAudioClip::stop() {
    m_request.reset();
    if (m_sounding)
        fadeOut();
}

bool OpenALAudioClip::isFading() const {
    return std::any_of(m_sources.begin(), m_sources.end(),
                       [](const Source& source) { return source.fadesUntil.has_value(); });
}

std::optional<OpenALAudioClip::Clock::time_point> OpenALAudioClip::nextWake() const {
    std::optional<Clock::time_point> wake;
    for (const Source& source : m_sources)
        if (source.fadesUntil)
            wake = wake ? std::min(*wake, *source.fadesUntil) : source.fadesUntil;
    if (!m_sounding || !std::isfinite(m_started.left.count()))
        return wake;
    const auto end = m_started.time + std::chrono::duration_cast<Clock::duration>(m_started.left);
    return wake ? std::min(*wake, end) : end;
}

void OpenALAudioClip::tidy() {
    const auto now = Clock::now();
    for (Source& source : m_sources)
        if (source.fadesUntil && *source.fadesUntil <= now) {
            m_device->al().alSourceStop(source.name);
            source.fadesUntil.reset();
        }
    if (m_sounding && left() < longestBuffer &&
        stateOf(m_device->al(), m_sources.at(m_current).name) == AL_STOPPED) {
        m_sounding = false;
        m_place = 0;
    }
    if (m_request && (now - m_request->time > patience || now - m_request->time > m_request->left))
        m_request.reset();
}

void OpenALAudioClip::deviceOpened(OpenALAudioDevice& device) {
    if (!m_request)
        return;
    const Request request = *std::exchange(m_request, std::nullopt);
    const Seconds waited = Clock::now() - request.time;
    m_place = std::fmod(m_place + waited.count(), duration());
    enterDevice(device);
    start(request.left - waited);
}

void OpenALAudioClip::leaveDevice(bool lost) {
    if (!m_device)
        return;
    if (m_sounding) {
        // The sources of a lost device have stopped already and know no place, the clock does.
        if (lost)
            m_request = {.time = Clock::now(), .left = left()};
        const double played = Seconds(Clock::now() - m_started.time).count();
        m_place = std::fmod(m_place + played, duration());
        m_sounding = false;
    }
    const OpenALAudioLibrary& al = m_device->al();
    for (Source& source : m_sources) {
        al.alSourceStop(source.name);
        al.alDeleteSources(1, &source.name);
        source = {};
    }
    al.alDeleteBuffers(1, &m_buffer);
    m_buffer = 0;
    m_device = nullptr;
}

OpenALAudioClip::Seconds OpenALAudioClip::lengthFromPlace() const {
    if (m_loops < 0 || m_loops > mostLoops)
        return Seconds(std::numeric_limits<double>::infinity());
    return Seconds(duration() * (m_loops + 1.0) - m_place);
}

OpenALAudioClip::Seconds OpenALAudioClip::left() const {
    return m_started.left - Seconds(Clock::now() - m_started.time);
}

void OpenALAudioClip::enterDevice(OpenALAudioDevice& device) {
    if (m_device)
        return;
    m_device = &device;
    m_buffer = uploadSound(device.al(), *m_sound);
    for (Source& source : m_sources) {
        source.name = createStereoSource(device.al());
        device.al().alSourcei(source.name, AL_BUFFER, static_cast<ALint>(m_buffer));
    }
}

/// From the place that is kept, on the source whose turn it is; `left` is what remains to be played
/// of all repetitions.
void OpenALAudioClip::start(Seconds left) {
    m_current = 1 - m_current;
    Source& source = m_sources.at(m_current);
    const OpenALAudioLibrary& al = m_device->al();
    al.alSourceStop(source.name);
    source.fadesUntil.reset();
    load(source);
    al.alSourcef(source.name, AL_GAIN, m_volume);
    const double queueLength = duration() * std::max(1, source.queued);
    const double begin = std::isfinite(left.count()) ? queueLength - left.count() : m_place;
    const auto frame = static_cast<ALint>(std::lround(begin * m_format.sampleRate));
    // A sound from its start is not faded in, and is only told so by not being told a place.
    if (frame > 0)
        al.alSourcei(
            source.name, AL_SAMPLE_OFFSET,
            std::min(frame, static_cast<ALint>(m_frames) * std::max(1, source.queued) - 1));
    al.alSourcePlay(source.name);
    m_started = {.time = Clock::now(), .left = left};
    m_sounding = true;
}

/// Gives a stopped source what it needs for the number of repetitions; a sound that comes once or
/// without end needs the one buffer only.
void OpenALAudioClip::load(Source& source) const {
    const OpenALAudioLibrary& al = m_device->al();
    const bool endless = !std::isfinite(lengthFromPlace().count());
    al.alSourcei(source.name, AL_LOOPING, endless ? AL_TRUE : AL_FALSE);
    const int wanted = endless || m_loops == 0 ? 0 : m_loops + 1;
    if (source.queued == wanted)
        return;
    al.alSourcei(source.name, AL_BUFFER, 0);
    source.queued = wanted;
    if (wanted == 0) {
        al.alSourcei(source.name, AL_BUFFER, static_cast<ALint>(m_buffer));
        return;
    }
    const std::vector<ALuint> names(static_cast<std::size_t>(wanted), m_buffer);
    al.alSourceQueueBuffers(source.name, wanted, names.data());
}

/// The sound goes on unheard until its gain has come down to 0.
void OpenALAudioClip::fadeOut() {
    m_place = place();
    m_sounding = false;
    Source& source = m_sources.at(m_current);
    m_device->al().alSourcef(source.name, AL_GAIN, 0);
    source.fadesUntil = Clock::now() + fadeTime;
}

} // namespace quorvane
