#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#include "platform/linux/audio/AudioOutput.h"
#include "platform/posix/StandardError.h"

namespace quorvane {

namespace {

using Seconds = std::chrono::duration<double>;

// After the last sound: the stream is corked, so that the output may rest, later closed.
constexpr std::chrono::seconds corkedAfter{2};
constexpr std::chrono::seconds closedAfter{30};

// What is written ahead, in frames, and what of that before the server has confirmed a change:
// little, so that it arrives before the server reads on.
constexpr std::int64_t buffered = std::int64_t{2} * streamRate;
constexpr std::int64_t urgent = streamRate / 4;
// How far ahead of the server a change is laid, after one that came too late.
constexpr std::int64_t firstAhead = streamRate / 200;
constexpr std::int64_t mostAhead = streamRate / 10;
// The same from the beginning, where the server reads unnoticed: two of its usual periods.
constexpr std::int64_t unnoticedAhead = streamRate / 90;
// Less room than this is left for later.
constexpr std::int64_t leastFill = streamRate / 2;

// An answer that took longer tells too little about the present.
constexpr Seconds promptly{0.5};
// A stream that is this far from where it should be by the clock has stood still, or hurried after
// that; one that does not answer, though it should have long asked for more, stands still.
constexpr std::int64_t standstill = streamRate / 4;
constexpr std::chrono::seconds longestAnswer{1};
constexpr std::chrono::seconds longestSilence{2};
constexpr std::chrono::milliseconds lookInterval{500};

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
    try {
        serve(lock);
    } catch (const std::bad_alloc&) {
        printError("no sound from now on: out of memory");
        if (!lock.owns_lock())
            lock.lock();
        lose();
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

/// Until the end.
void AudioOutput::serve(std::unique_lock<std::mutex>& lock) {
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
}

void AudioOutput::step(Clock::time_point now) {
    noticeConnection(now);
    if (m_connected && !m_stream)
        openIfDue(now);
    if (m_streamReady)
        serveStream(now);
    std::erase_if(m_members, [&](const Member& member) {
        return member.removed && (!m_stream || !member.track->needsStream(nextFrame(now)));
    });
}

void AudioOutput::serveStream(Clock::time_point now) {
    followPosition();
    restIfSilent(now);
    if (!m_stream || m_corked)
        return;
    lookAfterStandstill(now);
    const auto due = nextQuestion();
    if (!m_askedAt && (m_changed || m_streamChanged || (due && *due <= now)))
        ask(now);
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
    m_streamChanged = false;
    m_stream->askPosition();
}

/// Looks at the server's answer, if there is one.
void AudioOutput::followPosition() {
    if (!m_newPosition)
        return;
    const Position position = *std::exchange(m_newPosition, std::nullopt);
    const auto asked = *std::exchange(m_askedAt, std::nullopt);
    if (position.time - asked > promptly) {
        recover(position.time, asked);
        ask(position.time);
        return;
    }
    if (m_position && std::abs(position.next - nextFrame(position.time)) > standstill) {
        m_stillSince = m_stillSince.value_or(m_position->time);
        recover(position.time, *m_stillSince);
        m_nextLook = position.time + lookInterval;
    } else {
        m_stillSince.reset();
    }
    m_position = position;
    if (m_unconfirmed)
        checkLaid(position.next);
    for (const Member& member : m_members)
        finish(member.track->takeHeard(position.heard));
    if (m_changed)
        layTracks(position.next);
    else
        fill();
}

/// A change that the server had passed when it arrived is laid again, farther ahead.
void AudioOutput::checkLaid(std::int64_t next) {
    if (next > *std::exchange(m_unconfirmed, std::nullopt)) {
        m_ahead = std::clamp(2 * m_ahead, firstAhead, mostAhead);
        m_changed = true;
        return;
    }
    m_ahead = std::max(m_ahead / 2, leastAhead());
    for (const Member& member : m_members)
        member.track->confirm();
}

/// A server that does not answer or play is not waited for: what plays is looked at by the clock.
void AudioOutput::lookAfterStandstill(Clock::time_point now) {
    if (m_askedAt && now - *m_askedAt >= longestAnswer && !m_stillSince)
        m_stillSince = m_askedAt;
    if (!m_stillSince || now < m_nextLook)
        return;
    m_nextLook = now + lookInterval;
    if (m_askedAt)
        recover(now, *m_stillSince);
    else
        ask(now);
}

void AudioOutput::recover(Clock::time_point now, Clock::time_point lostAt) {
    for (const Member& member : m_members)
        finish(member.track->recover(now, lostAt));
    m_unconfirmed.reset();
    m_changed = true;
}

std::int64_t AudioOutput::leastAhead() const {
    return m_connection.readsUnnoticed() ? unnoticedAhead : 0;
}

void AudioOutput::layTracks(std::int64_t next) {
    m_ahead = std::max(m_ahead, leastAhead());
    m_unconfirmed = next + m_ahead;
    for (const Member& member : m_members)
        member.track->lay(*m_unconfirmed);
    write(next, static_cast<std::size_t>(m_ahead + urgent));
    m_changed = false;
    ask(Clock::now());
}

/// Fills the buffer: what has been played since, and what was left out for the sake of a change.
void AudioOutput::fill() {
    const std::int64_t begin = std::max(m_written, m_position->next);
    const std::int64_t missing = m_position->next + buffered - begin;
    if (missing >= leastFill)
        write(begin, static_cast<std::size_t>(missing));
}

void AudioOutput::write(std::int64_t frame, std::size_t frames) {
    m_samples.assign(frames * streamChannels, 0);
    for (const Member& member : m_members)
        member.track->addTo(m_samples, frame);
    limit(m_samples);
    m_stream->write(m_samples, frame);
    m_written = frame + static_cast<std::int64_t>(frames);
}

/// When the server is to be asked for its position, if nothing changes: when the next sound has
/// been heard to its end, or when the server has said nothing for long.
std::optional<AudioOutput::Clock::time_point> AudioOutput::nextQuestion() const {
    if (!m_position || m_corked)
        return std::nullopt;
    auto due = m_position->time + longestSilence;
    for (const Member& member : m_members)
        if (const auto end = member.track->nextEnd())
            due = std::min(due, m_position->time + durationOf(*end - m_position->heard + 1));
    return due;
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
    for (const Member& member : m_members)
        member.track->leaveStream();
    m_corked = rests;
    m_position.reset();
    m_stillSince.reset();
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
    if (const auto due = nextQuestion(); due && !m_askedAt)
        atLatest(*due);
    if (m_stillSince)
        atLatest(m_nextLook);
    else if (m_askedAt)
        atLatest(*m_askedAt + longestAnswer);
    return wake;
}

} // namespace quorvane
