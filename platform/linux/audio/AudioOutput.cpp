#include "platform/linux/audio/AudioOutput.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/posix/StandardError.h"
#include "platform/posix/Threads.h"

namespace quorvane {

namespace {

// A thread that is stuck in the sound server's client library is left behind when the program ends.
constexpr std::chrono::seconds partingTime{2};

} // namespace

std::shared_ptr<AudioOutput> AudioOutput::create() {
    const std::shared_ptr<AudioOutput> output(new AudioOutput);
    output->start(output);
    // The thread has a reference too, so it is another's end that ends it.
    return {output.get(), [output](AudioOutput* /*owned by the capture*/) { output->end(); }};
}

void AudioOutput::start(const std::shared_ptr<AudioOutput>& self) {
    if (m_connection.isUsable())
        m_thread = startThread("sound", [self] { self->run(); });
    else
        printError("no sound: too few file descriptors");
    if (!m_thread.joinable())
        m_available = false;
}

void AudioOutput::end() {
    if (!m_thread.joinable())
        return;
    std::unique_lock lock(m_mutex);
    m_quit = true;
    m_connection.wake();
    const bool ended = m_hasEnded.wait_for(lock, partingTime, [this] { return m_ended; });
    lock.unlock();
    if (ended)
        m_thread.join();
    else
        m_thread.detach();
}

std::optional<AudioError> AudioOutput::startEngine(const void* engine) {
    return change([&]() -> std::optional<AudioError> {
        if (!m_available) {
            m_wantsAttempt = true;
            return AudioError{"There is no sound output."};
        }
        if (std::find(m_runningEngines.begin(), m_runningEngines.end(), engine) ==
            m_runningEngines.end())
            m_runningEngines.push_back(engine);
        return std::nullopt;
    });
}

void AudioOutput::stopEngine(const void* engine) {
    change([&] {
        if (std::erase(m_runningEngines, engine) == 0)
            return;
        for (const Member& member : m_members)
            if (member.engine == engine)
                finish(member.track->clear());
    });
}

bool AudioOutput::isRunning(const void* engine) const {
    return look([&] {
        return std::find(m_runningEngines.begin(), m_runningEngines.end(), engine) !=
               m_runningEngines.end();
    });
}

void AudioOutput::add(std::shared_ptr<Track> track, const void* engine) {
    look([&] { m_members.push_back({.track = std::move(track), .engine = engine}); });
}

void AudioOutput::remove(const Track& track) {
    change([&] {
        for (Member& member : m_members)
            if (member.track.get() == &track) {
                finish(member.track->clear());
                member.removed = true;
            }
    });
}

void AudioOutput::finish(Track::Completions completions) {
    std::move(completions.begin(), completions.end(), std::back_inserter(m_finished));
}

void AudioOutput::hold() {
    change([this] { ++m_holds; });
}

void AudioOutput::release() {
    change([this] { --m_holds; });
}

} // namespace quorvane
