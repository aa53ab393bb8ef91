#include "platform/simulated/audio/SimulatedAudioFilePlayer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <utility>

namespace quorvane {

namespace {

std::shared_ptr<const PCMBuffer> bufferOf(const SimulatedRecording& recording) {
    auto buffer = std::make_shared<PCMBuffer>();
    buffer->format = recording.format;
    buffer->samples = recording.samples;
    buffer->frameLength =
        static_cast<std::uint32_t>(recording.samples.size() / recording.format.channels);
    buffer->frameCapacity = buffer->frameLength;
    return buffer;
}

} // namespace

SimulatedAudioFilePlayer::SimulatedAudioFilePlayer(
    RunLoop& runLoop, std::shared_ptr<SimulatedTimeline> timeline,
    std::shared_ptr<const SimulatedAudioMachine> machine, std::filesystem::path file)
    : m_runLoop(runLoop), m_timeline(std::move(timeline)), m_machine(std::move(machine)),
      m_file(std::move(file)), m_hasSound(!m_machine->files.at(m_file).isDamaged &&
                                          !m_machine->faults->fails(Fault::FilePlayerSound)),
      m_buffer(bufferOf(m_machine->files.at(m_file))) {}

SimulatedAudioFilePlayer::~SimulatedAudioFilePlayer() {
    invalidate(m_endTimer);
}

double SimulatedAudioFilePlayer::duration() const {
    return m_buffer->frameLength / m_buffer->format.sampleRate;
}

double SimulatedAudioFilePlayer::currentTime() const {
    if (!m_current)
        return m_place;
    const SimulatedSound& current = (*m_timeline)[*m_current];
    const double place = current.offset + m_runLoop.currentMediaTime() - current.startTime;
    return current.loops ? std::fmod(place, duration()) : std::min(place, duration());
}

void SimulatedAudioFilePlayer::setCurrentTime(double seconds) {
    note("currentTime", seconds);
    const bool playing = isPlaying();
    fallSilent();
    m_place = std::clamp(seconds, 0.0, duration());
    if (playing)
        sound(lengthFromPlace());
    if (m_request)
        m_request = {.time = m_runLoop.currentMediaTime(), .left = lengthFromPlace()};
}

void SimulatedAudioFilePlayer::setVolume(float volume) {
    note("volume", volume);
    m_volume = std::clamp(volume, 0.0F, 1.0F);
    if (m_current)
        (*m_timeline)[*m_current].volumes.push_back(
            {.time = m_runLoop.currentMediaTime(), .volume = m_volume});
}

void SimulatedAudioFilePlayer::setNumberOfLoops(int count) {
    note("loops", count);
    m_numberOfLoops = count;
}

bool SimulatedAudioFilePlayer::prepareToPlay() {
    m_calls.emplace_back("prepare");
    return !m_machine->faults->fails(Fault::FilePlayerPrepare);
}

bool SimulatedAudioFilePlayer::play() {
    m_calls.emplace_back(m_machine->outputDevicePresent ? "play" : "play without device");
    if (!m_hasSound || m_machine->faults->fails(Fault::FilePlayerPlay))
        return false;
    if (m_current)
        return true;
    m_request.reset();
    if (m_machine->outputDevicePresent)
        sound(lengthFromPlace());
    else
        m_request = {.time = m_runLoop.currentMediaTime(), .left = lengthFromPlace()};
    return m_current.has_value();
}

void SimulatedAudioFilePlayer::stop() {
    m_calls.emplace_back("stop");
    fallSilent();
    m_request.reset();
}

void SimulatedAudioFilePlayer::deviceCame() {
    if (!m_request)
        return;
    const Request request = *std::exchange(m_request, std::nullopt);
    const double waited = m_runLoop.currentMediaTime() - request.time;
    // An endless sound waits for as long as it takes.
    if ((waited > patience && std::isfinite(request.left)) || waited >= request.left)
        return;
    m_place = std::fmod(m_place + waited, duration());
    sound(request.left - waited);
}

void SimulatedAudioFilePlayer::deviceWent() {
    if (!m_current)
        return;
    const double now = m_runLoop.currentMediaTime();
    const double left = (*m_timeline)[*m_current].stopTime - now;
    fallSilent();
    m_request = {.time = now, .left = left};
}

void SimulatedAudioFilePlayer::release() {
    fallSilent();
    m_request.reset();
}

void SimulatedAudioFilePlayer::note(const std::string& call, double value) {
    std::ostringstream text;
    text << call << ' ' << value;
    m_calls.push_back(text.str());
}

double SimulatedAudioFilePlayer::lengthFromPlace() const {
    if (m_numberOfLoops < 0)
        return std::numeric_limits<double>::infinity();
    return duration() * (m_numberOfLoops + 1.0) - m_place;
}

void SimulatedAudioFilePlayer::sound(double left) {
    const double now = m_runLoop.currentMediaTime();
    m_current = m_timeline->size();
    m_timeline->push_back({.file = m_file,
                           .buffer = m_buffer,
                           .startTime = now,
                           .offset = m_place,
                           .stopTime = now + left,
                           .loops = m_numberOfLoops != 0,
                           .volumes = {{.time = now, .volume = m_volume}}});
    if (std::isfinite(left))
        m_endTimer = m_runLoop.scheduledTimer(left, false, [weak = weak_from_this()](Timer&) {
            if (const auto player = weak.lock())
                player->finish();
        });
}

void SimulatedAudioFilePlayer::fallSilent() {
    if (!m_current)
        return;
    m_place = currentTime();
    (*m_timeline)[*m_current].stopTime = m_runLoop.currentMediaTime();
    m_current.reset();
    invalidate(m_endTimer);
}

void SimulatedAudioFilePlayer::finish() {
    m_current.reset();
    m_place = 0;
}

} // namespace quorvane
