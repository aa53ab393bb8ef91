#include <algorithm>
#include <utility>

#include "platform/linux/audio/OpenALAudioOutput.h"

namespace quorvane {

namespace {

// OpenAL says nothing when a device goes, so it is asked, but only while its stream runs: the
// mixer wakes hundreds of times as often then.
constexpr std::chrono::milliseconds connectionCheckInterval{250};
// With nothing to be heard, for a hold: the loss is noticed anyway when the next sound is played.
constexpr std::chrono::milliseconds silentCheckInterval{1000};
// The mixer works in whole periods, so a sound may end a little after its computed end.
constexpr std::chrono::milliseconds shortestWait{2};

} // namespace

bool OpenALAudioOutput::isSounding() const {
    return areClipsSounding() || std::any_of(m_voices.begin(), m_voices.end(),
                                             [](const auto& voice) { return voice->isSounding(); });
}

bool OpenALAudioOutput::areClipsSounding() const {
    return std::any_of(m_clips.begin(), m_clips.end(),
                       [](const auto& clip) { return clip->isSounding() || clip->isFading(); });
}

bool OpenALAudioOutput::isStreamNeeded() const {
    const bool rests = m_silence && m_silence->isPlaying();
    return isSounding() || (m_holds > 0 && !rests);
}

OpenALAudioOutput::Clock::duration OpenALAudioOutput::idleLimit() const {
    return m_holds > 0 ? heldIdleTime : idleTime;
}

std::optional<OpenALAudioOutput::Clock::time_point> OpenALAudioOutput::nextWake() const {
    std::optional<Clock::time_point> wake;
    const auto atLatest = [&wake](Clock::time_point time) {
        wake = wake ? std::min(*wake, time) : time;
    };
    const Clock::time_point now = Clock::now();
    for (const auto& voice : m_voices)
        if (const auto left = voice->timeToEnd())
            atLatest(now + std::clamp<std::chrono::nanoseconds>(*left, shortestWait,
                                                                connectionCheckInterval));
    for (const auto& clip : m_clips)
        if (const auto time = clip->nextWake())
            atLatest(std::max(*time, now + shortestWait));
    for (const Finished& finished : m_finished)
        atLatest(finished.due);
    if (m_device && (m_holds > 0 || isSounding()))
        atLatest(now + (isSounding() ? connectionCheckInterval : silentCheckInterval));
    if (m_device && m_runningEngines.empty() && m_holds == 0)
        atLatest(std::max(m_lingersUntil, now + shortestWait));
    if (m_device && !m_device->isPaused() && m_idleSince)
        atLatest(*m_idleSince + idleLimit());
    if (isAwaited())
        atLatest(m_nextAttempt);
    return wake;
}

OpenALAudioVoice::Completions OpenALAudioOutput::takeDue(Clock::time_point now) {
    OpenALAudioVoice::Completions due;
    std::erase_if(m_finished, [&](Finished& finished) {
        if (finished.due > now)
            return false;
        due.push_back(std::move(finished.completion));
        return true;
    });
    return due;
}

void OpenALAudioOutput::run() {
    std::unique_lock lock(m_mutex);
    while (!m_quit) {
        noticeLoss();
        tidyClips();
        for (const auto& voice : m_voices)
            finishHeard(voice->takeFinished());
        runCompletions(lock, takeDue(Clock::now()));
        closeWhenUnneeded();
        // Time has passed, and much may have changed, when one of these had something to do.
        if (closeLater(lock) || keepRunning(lock) || tryToOpen(lock) || pauseOrResume(lock) ||
            m_quit)
            continue;
        if (const auto wake = nextWake())
            m_changed.wait_until(lock, *wake);
        else
            m_changed.wait(lock);
    }
    closeDevice();
    closeLater(lock);
    keepRunning(lock);
    runCompletions(lock, takeDue(Clock::time_point::max()));
    m_ended = true;
    m_served.notify_all();
}

/// Without the lock, so that what a completion does can never wait for this thread.
void OpenALAudioOutput::runCompletions(std::unique_lock<std::mutex>& lock,
                                       OpenALAudioVoice::Completions completions) {
    if (completions.empty())
        return;
    lock.unlock();
    for (const auto& completion : completions)
        if (completion)
            completion();
    completions.clear();
    lock.lock();
}

} // namespace quorvane
