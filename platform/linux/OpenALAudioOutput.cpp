#include "platform/linux/OpenALAudioOutput.h"

#include <algorithm>
#include <utility>

#include "platform/linux/OpenALAudioConfiguration.h"

namespace quorvane {

namespace {

// OpenAL says nothing when a device goes, so it is asked, but only while something sounds: the
// mixer wakes hundreds of times as often then.
constexpr std::chrono::milliseconds connectionCheckInterval{250};
// The mixer works in whole periods, so a sound may end a little after its computed end.
constexpr std::chrono::milliseconds shortestWait{2};

} // namespace

OpenALAudioOutput::OpenALAudioOutput() {
    configureOpenALAudio();
    m_thread = std::thread([this] { run(); });
}

OpenALAudioOutput::~OpenALAudioOutput() {
    {
        const std::lock_guard lock(m_mutex);
        closeDevice();
        m_quit = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

std::optional<AudioError> OpenALAudioOutput::startEngine(const void* engine) {
    const std::lock_guard lock(m_mutex);
    noticeLoss();
    if (runs(engine))
        return std::nullopt;
    if (!m_device)
        if (auto error = openDevice())
            return error;
    m_runningEngines.push_back(engine);
    m_changed.notify_one();
    return std::nullopt;
}

void OpenALAudioOutput::stopEngine(const void* engine) {
    const std::lock_guard lock(m_mutex);
    if (std::erase(m_runningEngines, engine) == 0)
        return;
    stopVoicesOf(engine);
    if (m_runningEngines.empty())
        closeDevice();
    m_changed.notify_one();
}

bool OpenALAudioOutput::isEngineRunning(const void* engine) {
    const std::lock_guard lock(m_mutex);
    noticeLoss();
    return runs(engine);
}

void OpenALAudioOutput::attach(const std::shared_ptr<OpenALAudioVoice>& voice, const void* engine) {
    const std::lock_guard lock(m_mutex);
    voice->engine = engine;
    m_voices.push_back(voice);
}

void OpenALAudioOutput::removeEngine(const void* engine) {
    stopEngine(engine);
    const std::lock_guard lock(m_mutex);
    for (const auto& voice : m_voices)
        if (voice->engine == engine)
            voice->engine = nullptr;
}

void OpenALAudioOutput::remove(const std::shared_ptr<OpenALAudioVoice>& voice) {
    stop(*voice);
    const std::lock_guard lock(m_mutex);
    std::erase(m_voices, voice);
}

void OpenALAudioOutput::schedule(OpenALAudioVoice& voice, std::shared_ptr<const PCMBuffer> buffer,
                                 AudioPlayerNode::Completion completion) {
    bool playing = false;
    {
        const std::lock_guard lock(m_mutex);
        voice.schedule(std::move(buffer), std::move(completion));
        playing = voice.isPlaying();
    }
    if (playing)
        play(voice);
}

void OpenALAudioOutput::play(OpenALAudioVoice& voice) {
    const std::lock_guard lock(m_mutex);
    noticeLoss();
    if (!runs(voice.engine))
        return;
    m_device->resume();
    finishHeard(voice.play(*m_device));
    m_changed.notify_one();
}

void OpenALAudioOutput::pause(OpenALAudioVoice& voice) {
    const std::lock_guard lock(m_mutex);
    finishHeard(voice.pause());
    m_changed.notify_one();
}

void OpenALAudioOutput::stop(OpenALAudioVoice& voice) {
    const std::lock_guard lock(m_mutex);
    finish(voice.stop(), Clock::now());
    m_changed.notify_one();
}

std::optional<AudioError> OpenALAudioOutput::openDevice() {
    if (!m_library)
        m_library = OpenALAudioLibrary::load();
    if (!m_library)
        return AudioError{"OpenAL is not installed."};
    auto opened = OpenALAudioDevice::open(*m_library);
    if (auto* error = std::get_if<AudioError>(&opened)) {
        // Whatever back end it has settled on, the next attempt is to choose anew.
        m_library.reset();
        return std::move(*error);
    }
    m_device = std::move(std::get<std::unique_ptr<OpenALAudioDevice>>(opened));
    return std::nullopt;
}

void OpenALAudioOutput::closeDevice() {
    m_device.reset();
    m_idleSince.reset();
}

void OpenALAudioOutput::noticeLoss() {
    if (!m_device || m_device->isConnected())
        return;
    for (const void* engine : m_runningEngines)
        stopVoicesOf(engine);
    m_runningEngines.clear();
    closeDevice();
    m_changed.notify_one();
}

bool OpenALAudioOutput::runs(const void* engine) const {
    return std::find(m_runningEngines.begin(), m_runningEngines.end(), engine) !=
           m_runningEngines.end();
}

void OpenALAudioOutput::stopVoicesOf(const void* engine) {
    for (const auto& voice : m_voices)
        if (voice->engine == engine)
            finish(voice->stop(), Clock::now());
}

void OpenALAudioOutput::finish(OpenALAudioVoice::Completions completions, Clock::time_point due) {
    for (auto& completion : completions)
        m_finished.push_back({.completion = std::move(completion), .due = due});
}

/// What has been mixed to its end is heard to its end a little later.
void OpenALAudioOutput::finishHeard(OpenALAudioVoice::Completions completions) {
    if (!completions.empty())
        finish(std::move(completions), Clock::now() + m_device->latency());
}

bool OpenALAudioOutput::isSounding() const {
    return std::any_of(m_voices.begin(), m_voices.end(),
                       [](const auto& voice) { return voice->isSounding(); });
}

void OpenALAudioOutput::pauseWhenIdle() {
    if (!m_device || m_device->isPaused() || isSounding()) {
        m_idleSince.reset();
        return;
    }
    const Clock::time_point now = Clock::now();
    if (!m_idleSince)
        m_idleSince = now;
    if (now - *m_idleSince >= idleTime)
        m_device->pause();
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
    for (const Finished& finished : m_finished)
        atLatest(finished.due);
    if (m_device && !m_device->isPaused() && m_idleSince)
        atLatest(*m_idleSince + idleTime);
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
        for (const auto& voice : m_voices)
            finishHeard(voice->takeFinished());
        runCompletions(lock, takeDue(Clock::now()));
        pauseWhenIdle();
        if (m_quit)
            break;
        if (const auto wake = nextWake())
            m_changed.wait_until(lock, *wake);
        else
            m_changed.wait(lock);
    }
    runCompletions(lock, takeDue(Clock::time_point::max()));
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
