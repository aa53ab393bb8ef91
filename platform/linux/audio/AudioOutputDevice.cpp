#include <algorithm>
#include <utility>

#include "platform/linux/audio/AudioOutput.h"

namespace quorvane {

namespace {

// Of attempts to have an output, while something waits for it; the shorter one after the server has
// made its socket, on which it may not listen yet.
constexpr std::chrono::milliseconds firstInterval{500};
constexpr std::chrono::milliseconds startingInterval{50};
constexpr std::chrono::seconds longestInterval{5};
// An attempt takes some milliseconds; a server that is started on demand takes longer.
constexpr std::chrono::seconds longestAttempt{5};

} // namespace

/// Something is to sound, or to be ready to, as soon as there is an output.
bool AudioOutput::isAwaited(Clock::time_point now) const {
    return m_holds > 0 ||
           std::any_of(m_members.begin(), m_members.end(), [&](const Member& member) {
               return member.track->waitsStill(now, m_lostAt.value_or(now));
           });
}

/// Without the lock: where the server is started on demand, that is waited for.
void AudioOutput::connectIfDue(std::unique_lock<std::mutex>& lock) {
    const auto now = Clock::now();
    if (m_connection.takeServerAppeared()) {
        m_nextAttempt = now;
        m_attemptInterval = startingInterval;
    }
    if (m_connection.state() != PulseConnection::State::None || m_attemptEnds || m_connected ||
        now < m_nextAttempt || !(m_wantsAttempt || isAwaited(now)))
        return;
    m_attemptEnds = now + longestAttempt;
    lock.unlock();
    m_connection.connect();
    lock.lock();
}

void AudioOutput::noticeConnection(Clock::time_point now) {
    const auto state = m_connection.state();
    const bool overdue = m_attemptEnds && now >= *m_attemptEnds;
    if (state == PulseConnection::State::Connected && !m_connected) {
        m_connected = true;
        m_attemptEnds.reset();
        m_available = true;
        m_wantsAttempt = false;
    } else if (state == PulseConnection::State::None && (m_connected || m_attemptEnds)) {
        m_connected = false;
        lose();
    } else if (m_streamLost || overdue) {
        if (overdue && !m_stream)
            m_connection.disconnect();
        lose();
    }
}

void AudioOutput::openIfDue(Clock::time_point now) {
    if (now < m_nextAttempt || !(m_wantsAttempt || isNeeded(now)))
        return;
    m_attemptEnds = now + longestAttempt;
    m_stream = PulseStream::open(m_connection.context(),
                                 {.ready = [this] { streamReady(); },
                                  .lost = [this] { m_streamLost = true; },
                                  .changed = [this] { m_streamChanged = true; },
                                  .position =
                                      [this](std::int64_t next, std::int64_t heard) {
                                          m_newPosition = {
                                              .next = next, .heard = heard, .time = Clock::now()};
                                      }});
    if (!m_stream)
        lose();
}

/// Called by the stream, without the lock.
void AudioOutput::streamReady() {
    const std::lock_guard lock(m_mutex);
    const auto now = Clock::now();
    m_streamReady = true;
    m_attemptEnds.reset();
    m_wantsAttempt = false;
    m_available = true;
    recover(now, m_lostAt.value_or(now));
    m_lostAt.reset();
}

/// There is no output any more, or still none. Engines stop, the others wait.
void AudioOutput::lose() {
    const auto now = Clock::now();
    // The loss of an output that was there is followed by an attempt at once.
    if (m_available) {
        m_nextAttempt = now;
        m_attemptInterval = firstInterval;
    } else {
        m_nextAttempt = now + m_attemptInterval;
        m_attemptInterval = std::min<Clock::duration>(2 * m_attemptInterval, longestInterval);
    }
    closeStream();
    m_available = false;
    m_wantsAttempt = false;
    m_attemptEnds.reset();
    m_lostAt = m_lostAt.value_or(now);
    for (const Member& member : m_members)
        if (member.engine)
            finish(member.track->clear());
    m_runningEngines.clear();
}

void AudioOutput::closeStream() {
    for (const Member& member : m_members)
        member.track->leaveStream();
    m_stream.reset();
    m_streamReady = false;
    m_streamLost = false;
    m_streamChanged = false;
    m_stillSince.reset();
    m_ahead = 0;
    m_corked = false;
    m_silentSince.reset();
    m_position.reset();
    m_newPosition.reset();
    m_askedAt.reset();
    m_unconfirmed.reset();
    m_written = 0;
}

} // namespace quorvane
