#include "platform/simulated/audio/SimulatedAudioVoice.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <thread>
#include <utility>

namespace quorvane {

namespace {

/// As in a real audio system, but waits for the call to return.
void callFromAnotherThread(const AudioPlayerNode::Completion& completion) {
    if (completion)
        std::thread(completion).join();
}

} // namespace

SimulatedAudioVoice::SimulatedAudioVoice(RunLoop& runLoop,
                                         std::shared_ptr<SimulatedTimeline> timeline)
    : m_runLoop(runLoop), m_timeline(std::move(timeline)) {}

SimulatedAudioVoice::~SimulatedAudioVoice() {
    invalidate(m_endTimer);
}

SimulatedAudioVoice::State SimulatedAudioVoice::state() const {
    if (m_playing)
        return m_current ? State::Sounding : State::Waiting;
    return m_paused ? State::Paused : State::Stopped;
}

double SimulatedAudioVoice::framesPerSecond() const {
    return m_format ? m_format->sampleRate : m_scheduled.front().buffer->format.sampleRate;
}

double SimulatedAudioVoice::headDuration() const {
    return m_scheduled.front().buffer->frameLength / framesPerSecond();
}

double SimulatedAudioVoice::position() const {
    if (!m_current)
        return m_offset;
    const SimulatedSound& current = (*m_timeline)[*m_current];
    const double position = current.offset + m_runLoop.currentMediaTime() - current.startTime;
    return current.loops ? std::fmod(position, headDuration()) : position;
}

void SimulatedAudioVoice::attach() {
    m_calls.emplace_back("attach");
}

void SimulatedAudioVoice::connect(const AudioFormat& format) {
    std::ostringstream call;
    call << "connect " << format.sampleRate << '/' << format.channels;
    m_calls.push_back(call.str());
    m_format = format;
}

void SimulatedAudioVoice::schedule(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                                   AudioPlayerNode::Completion completion) {
    const bool loops = options == BufferOptions::Loops;
    m_calls.emplace_back(loops ? "schedule loops" : "schedule");
    // A loop of an empty buffer would never end.
    const bool canLoop = loops && buffer->frameLength > 0;
    m_scheduled.push_back(
        {.buffer = std::move(buffer), .loops = canLoop, .completion = std::move(completion)});
    if (m_playing && !m_current)
        sound(m_runLoop.currentMediaTime());
}

void SimulatedAudioVoice::setVolume(float volume) {
    std::ostringstream call;
    call << "volume " << volume;
    m_calls.push_back(call.str());
    m_volume = std::clamp(volume, 0.0F, 1.0F);
    if (m_current)
        (*m_timeline)[*m_current].volumes.push_back(
            {.time = m_runLoop.currentMediaTime(), .volume = m_volume});
}

void SimulatedAudioVoice::play() {
    m_calls.emplace_back(m_engineRunning ? "play" : "play without engine");
    if (!m_engineRunning || m_playing)
        return;
    m_playing = true;
    m_paused = false;
    if (!m_scheduled.empty())
        sound(m_runLoop.currentMediaTime());
}

void SimulatedAudioVoice::pause() {
    m_calls.emplace_back("pause");
    if (!m_playing)
        return;
    fallSilent();
    m_playing = false;
    m_paused = true;
}

void SimulatedAudioVoice::stop() {
    m_calls.emplace_back("stop");
    drop();
}

void SimulatedAudioVoice::engineStopped() {
    m_engineRunning = false;
    drop();
}

void SimulatedAudioVoice::drop() {
    fallSilent();
    m_playing = false;
    m_paused = false;
    m_offset = 0;
    // Queued, because a completion never runs inside the call that causes it.
    for (const Scheduled& dropped : std::exchange(m_scheduled, {}))
        m_runLoop.async([completion = dropped.completion] { callFromAnotherThread(completion); });
}

void SimulatedAudioVoice::sound(double startTime) {
    const bool loops = m_scheduled.front().loops;
    const double stopTime =
        loops ? std::numeric_limits<double>::infinity() : startTime + headDuration() - m_offset;
    m_current = m_timeline->size();
    m_timeline->push_back({.file = {},
                           .buffer = m_scheduled.front().buffer,
                           .startTime = startTime,
                           .offset = m_offset,
                           .stopTime = stopTime,
                           .loops = loops,
                           .volumes = {{.time = startTime, .volume = m_volume}}});
    if (loops)
        return;
    m_endTimer = m_runLoop.scheduledTimer(stopTime - m_runLoop.currentMediaTime(), false,
                                          [weak = weak_from_this()](Timer&) {
                                              if (const auto voice = weak.lock())
                                                  voice->finishHead();
                                          });
}

void SimulatedAudioVoice::fallSilent() {
    if (!m_current)
        return;
    m_offset = position();
    (*m_timeline)[*m_current].stopTime = m_runLoop.currentMediaTime();
    m_current.reset();
    invalidate(m_endTimer);
}

void SimulatedAudioVoice::finishHead() {
    const double endTime = (*m_timeline)[*m_current].stopTime;
    const auto completion = std::move(m_scheduled.front().completion);
    m_scheduled.pop_front();
    m_current.reset();
    m_offset = 0;
    // From the exact end, so that the next buffer follows without a gap even if the timer was late.
    if (!m_scheduled.empty())
        sound(endTime);
    callFromAnotherThread(completion);
}

} // namespace quorvane
