#include <algorithm>
#include <utility>

#include "platform/linux/audio/AudioOutput.h"

namespace quorvane {

namespace {

using Seconds = std::chrono::duration<double>;

// After the last sound: the stream is corked, so that the output may rest, later closed.
constexpr std::chrono::seconds corkedAfter{2};
constexpr std::chrono::seconds closedAfter{30};

// What is written ahead, in frames.
constexpr std::size_t buffered = 2 * streamRate;
// Less room than this is left for later.
constexpr std::size_t leastRoom = streamRate / 4;

// An answer that took longer tells too little about the present.
constexpr Seconds promptly{0.25};
// A stream that is this far behind the clock has stood still.
constexpr std::int64_t standstill = streamRate / 2;

Track::Clock::duration durationOf(std::int64_t frames) {
    return std::chrono::duration_cast<Track::Clock::duration>(
        Seconds(static_cast<double>(frames) / streamRate));
}

std::int64_t framesIn(Seconds time) {
    return static_cast<std::int64_t>(time.count() * streamRate);
}

} // namespace

void AudioOutput::run() {
    std::unique_lock lock(m_mutex);
    while (!m_quit) {
        connectIfDue(lock);
        step(Clock::now());
        const auto deadline = nextWake();
        const Track::Completions finished = std::exchange(m_finished, {});
        // Without the lock, so that what a completion does can never wait for this thread.
        lock.unlock();
        for (const auto& completion : finished)
            if (completion)
                completion();
        m_connection.iterate(deadline);
        lock.lock();
    }
    closeStream();
    m_connection.disconnect();
    const Track::Completions finished = std::exchange(m_finished, {});
    lock.unlock();
    for (const auto& completion : finished)
        if (completion)
            completion();
    lock.lock();
    m_ended = true;
    m_hasEnded.notify_all();
}

void AudioOutput::step(Clock::time_point now) {
    noticeConnection(now);
    if (m_connected && !m_stream)
        openIfDue(now);
    if (m_stream && m_streamReady) {
        restIfSilent(now);
        followPosition();
        if (m_hasRoom)
            refill(now);
        const auto end = nextEnd();
        if (m_stream && !m_askedAt && (m_changed || (end && *end <= now)))
            ask(now);
    }
    std::erase_if(m_members, [&](const Member& member) {
        return member.removed && (!m_stream || !member.track->needsStream(nextFrame(now)));
    });
}

bool AudioOutput::isNeeded(Clock::time_point now) const {
    return m_holds > 0 ||
           std::any_of(m_members.begin(), m_members.end(), [&](const Member& member) {
               return member.track->needsStream(nextFrame(now));
           });
}

/// The frame that the server reads next, by the clock.
std::int64_t AudioOutput::nextFrame(Clock::time_point now) const {
    return m_position ? m_position->next + framesIn(now - m_position->time) : 0;
}

void AudioOutput::ask(Clock::time_point now) {
    m_askedAt = now;
    m_stream->askPosition();
}

/// Looks at the server's answer, if there is one.
void AudioOutput::followPosition() {
    if (!m_newPosition)
        return;
    const Position position = *std::exchange(m_newPosition, std::nullopt);
    const auto asked = *std::exchange(m_askedAt, std::nullopt);
    if (position.time - asked > promptly) {
        ask(position.time);
        return;
    }
    if (m_position && position.next + standstill < nextFrame(position.time))
        recover(position.time, m_position->time);
    m_position = position;
    if (m_unconfirmed) {
        if (position.next > *m_unconfirmed)
            m_changed = true;
        else
            for (const Member& member : m_members)
                member.track->confirm();
        m_unconfirmed.reset();
    }
    for (const Member& member : m_members)
        finish(member.track->takeHeard(position.heard));
    if (m_changed)
        layTracks(position.next);
}

void AudioOutput::recover(Clock::time_point now, Clock::time_point lostAt) {
    for (const Member& member : m_members)
        finish(member.track->recover(now, lostAt));
    m_unconfirmed.reset();
    m_changed = true;
}

void AudioOutput::layTracks(std::int64_t frame) {
    for (const Member& member : m_members)
        member.track->lay(frame);
    write(frame, buffered);
    m_unconfirmed = frame;
    m_changed = false;
    ask(Clock::now());
}

void AudioOutput::write(std::int64_t frame, std::size_t frames) {
    m_samples.assign(frames * streamChannels, 0);
    for (const Member& member : m_members)
        member.track->addTo(m_samples, frame);
    limit(m_samples);
    m_stream->write(m_samples, frame);
    m_written = frame + static_cast<std::int64_t>(frames);
}

void AudioOutput::refill(Clock::time_point now) {
    m_hasRoom = false;
    const std::size_t room = m_stream->room();
    if (m_corked || !m_position || room < leastRoom)
        return;
    write(std::max(m_written, nextFrame(now)), room);
    if (!m_askedAt)
        ask(now);
}

/// The time at which the next sound that ends has been heard to its end.
std::optional<AudioOutput::Clock::time_point> AudioOutput::nextEnd() const {
    std::optional<std::int64_t> next;
    for (const Member& member : m_members)
        if (const auto end = member.track->nextEnd(); end && (!next || *end < *next))
            next = end;
    if (!next || !m_position)
        return std::nullopt;
    return m_position->time + durationOf(*next - m_position->heard + 1);
}

void AudioOutput::restIfSilent(Clock::time_point now) {
    const bool needed = isNeeded(now);
    if (needed) {
        m_silentSince.reset();
    } else if (!m_silentSince) {
        m_silentSince = now;
    } else if (now - *m_silentSince >= closedAfter) {
        closeStream();
        return;
    }
    const bool rests = m_silentSince && now - *m_silentSince >= corkedAfter;
    if (rests == m_corked)
        return;
    m_corked = rests;
    m_position.reset();
    m_stream->cork(rests);
    m_changed = m_changed || !rests;
}

std::optional<AudioOutput::Clock::time_point> AudioOutput::nextWake() const {
    std::optional<Clock::time_point> wake;
    const auto atLatest = [&wake](Clock::time_point time) {
        wake = wake ? std::min(*wake, time) : time;
    };
    if (m_attemptEnds)
        atLatest(*m_attemptEnds);
    else if (!m_stream && (m_wantsAttempt || isAwaited(Clock::now())))
        atLatest(m_nextAttempt);
    if (m_stream && m_silentSince)
        atLatest(*m_silentSince + (m_corked ? closedAfter : Clock::duration(corkedAfter)));
    if (const auto end = nextEnd(); end && m_stream && !m_askedAt)
        atLatest(*end);
    return wake;
}

} // namespace quorvane
