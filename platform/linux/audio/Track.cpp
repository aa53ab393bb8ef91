#include "platform/linux/audio/Track.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorvane {

namespace {

using Seconds = std::chrono::duration<double>;

/// For how long a sound waits for an output: a sound card takes its time to come back after the
/// machine has woken up.
constexpr Seconds patience{5};
/// A sound that begins later than this begins where it would be by then; earlier, it begins at its
/// start, for a late start is not noticed and one that is cut is.
constexpr Seconds grace{0.25};

std::int64_t framesOf(Seconds time) {
    return static_cast<std::int64_t>(time.count() * streamRate);
}

} // namespace

void Track::append(std::shared_ptr<const PCMBuffer> sound, std::int64_t frames,
                   Completion completion) {
    const std::int64_t start = lineEnd();
    m_parts.push_back({.part = {.sound = std::move(sound),
                                .start = start,
                                .end = std::min(start + frames, endless)},
                       .completion = std::move(completion)});
}

void Track::replace(std::shared_ptr<const PCMBuffer> sound, std::int64_t frames) {
    m_parts.clear();
    append(std::move(sound), frames, nullptr);
}

void Track::play(Clock::time_point now) {
    if (m_playing)
        return;
    m_playing = true;
    m_wasCutOff = false;
    m_since = now;
}

void Track::pause(Clock::time_point now) {
    m_place = place(now);
    m_playing = false;
}

Track::Completions Track::clear() {
    Completions completions;
    for (Scheduled& scheduled : m_parts)
        completions.push_back(std::move(scheduled.completion));
    m_parts.clear();
    m_playing = false;
    beginTake(0);
    return completions;
}

void Track::moveTo(std::int64_t place, Clock::time_point now) {
    m_since = now;
    beginTake(place);
}

std::int64_t Track::place(Clock::time_point now) const {
    if (!m_playing || m_parts.empty())
        return m_place;
    return std::min(m_place + framesOf(now - m_since), lineEnd());
}

void Track::beginTake(std::int64_t place) {
    ++m_take;
    m_takePlace = place;
    m_place = place;
    m_wasCutOff = false;
}

std::int64_t Track::lineEnd() const {
    return m_parts.empty() ? 0 : m_parts.back().part.end;
}

std::vector<Part> Track::parts() const {
    std::vector<Part> parts;
    std::transform(m_parts.begin(), m_parts.end(), std::back_inserter(parts),
                   [](const Scheduled& scheduled) { return scheduled.part; });
    return parts;
}

void Track::lay(std::int64_t frame) {
    m_laid = m_confirmed;
    auto& [voice, fading, take, place] = m_laid;
    std::erase_if(fading, [frame](const Voice& old) { return old.end() <= frame; });
    if (voice) {
        place = voice->placeAt(std::min(frame, voice->end()));
        const bool hasRunDry = voice->end() <= frame && place < lineEnd();
        if (!m_playing || take != m_take || hasRunDry) {
            voice->fadeOut(frame);
            fading.push_back(*std::exchange(voice, std::nullopt));
        }
    }
    if (std::exchange(take, m_take) != m_take)
        place = m_takePlace;
    if (!m_playing || m_parts.empty())
        return;
    if (voice) {
        voice->setParts(parts());
        voice->setGain(m_gain, frame);
    } else {
        voice.emplace(parts(), place, frame, m_gain);
    }
}

Track::Completions Track::takeHeard(std::int64_t frame) {
    Completions completions;
    if (m_confirmed.take != m_take || m_parts.empty() || (m_atEnd == AtEnd::Stops && !m_playing))
        return completions;
    const std::int64_t place =
        m_confirmed.voice ? m_confirmed.voice->placeAt(frame) : m_confirmed.place;
    while (!m_parts.empty() && m_parts.front().part.end <= place) {
        completions.push_back(std::move(m_parts.front().completion));
        m_parts.pop_front();
    }
    if (m_parts.empty()) {
        m_playing = m_playing && m_atEnd == AtEnd::Waits;
        beginTake(0);
    }
    return completions;
}

void Track::leaveStream() {
    if (m_confirmed.voice && m_playing)
        m_wasCutOff = true;
    else if (m_confirmed.voice)
        m_confirmed.place = m_place;
    m_confirmed.voice.reset();
    m_confirmed.fading.clear();
    m_laid = m_confirmed;
}

Track::Completions Track::recover(Clock::time_point now, Clock::time_point lostAt) {
    leaveStream();
    if (!m_playing || m_parts.empty())
        return {};
    if (!waitsStill(now, lostAt)) {
        if (m_atEnd == AtEnd::Waits)
            return clear();
        pause(now);
    }
    const bool begins = !std::exchange(m_wasCutOff, false) && now - m_since <= grace;
    if (!begins)
        m_confirmed.place = place(now);
    else if (m_confirmed.take != m_take)
        m_confirmed.place = m_place;
    m_takePlace = m_confirmed.place;
    m_confirmed.take = ++m_take;
    return takeHeard(0);
}

void Track::addTo(std::span<float> output, std::int64_t first) const {
    if (m_laid.voice)
        m_laid.voice->addTo(output, first);
    for (const Voice& voice : m_laid.fading)
        voice.addTo(output, first);
}

bool Track::needsStream(std::int64_t frame) const {
    const auto sounds = [frame](const Voice& voice) { return voice.end() > frame; };
    return (m_playing && !m_parts.empty()) || (m_laid.voice && sounds(*m_laid.voice)) ||
           std::any_of(m_laid.fading.begin(), m_laid.fading.end(), sounds);
}

std::optional<std::int64_t> Track::nextEnd() const {
    if (!m_confirmed.voice || m_confirmed.take != m_take || m_parts.empty() ||
        m_parts.front().part.end == endless)
        return std::nullopt;
    const Voice& voice = *m_confirmed.voice;
    return m_parts.front().part.end - voice.placeAt(0);
}

bool Track::waitsStill(Clock::time_point now, Clock::time_point lostAt) const {
    return m_playing && !m_parts.empty() &&
           (lineEnd() == endless || now - std::max(m_since, lostAt) <= patience);
}

} // namespace quorvane
