#include <algorithm>
#include <utility>
#include <variant>

#include "platform/linux/audio/OpenALAudioOutput.h"

namespace quorvane {

namespace {

// For one who waits for a device. An attempt that fails costs some 2 ms of processor time.
constexpr std::chrono::milliseconds attemptInterval{500};
// A device opens within some milliseconds, on a very busy machine within some hundred.
constexpr std::chrono::seconds openingTime{3};

} // namespace

/// Has the thread open a device, unless there is one, and waits for it, but not for a sound server
/// that hangs: once one has, nobody waits until its client library has given up.
std::optional<AudioError> OpenALAudioOutput::awaitDevice(std::unique_lock<std::mutex>& lock) {
    if (m_device)
        return std::nullopt;
    // An attempt that had begun before may have missed what is there now.
    const std::size_t request = ++m_requests;
    const auto deadline = m_blockedSince.value_or(Clock::now()) + openingTime;
    ++m_waiters;
    m_changed.notify_one();
    m_served.wait_until(lock, deadline, [&] { return m_device || m_answered >= request; });
    --m_waiters;
    if (m_device)
        return std::nullopt;
    return m_answered >= request ? m_openError : AudioError{"The sound server does not answer."};
}

void OpenALAudioOutput::closeDevice() {
    if (!m_device)
        return;
    for (const auto& clip : m_clips)
        clip->leaveDevice(false);
    m_closing = std::move(m_device);
    m_idleSince.reset();
    m_changed.notify_one();
}

void OpenALAudioOutput::noticeLoss() {
    if (!m_device || m_device->isConnected())
        return;
    for (const void* engine : m_runningEngines)
        stopVoicesOf(engine);
    m_runningEngines.clear();
    for (const auto& clip : m_clips)
        clip->leaveDevice(true);
    closeDevice();
    m_nextAttempt = Clock::now();
    m_changed.notify_one();
}

/// Without an engine, a hold or a sound; soon after the last one of a file player, since the next
/// is to come fast and that one to be heard to its end.
void OpenALAudioOutput::closeWhenUnneeded() {
    if (!m_device || !m_runningEngines.empty() || m_holds > 0 || m_waiters > 0)
        return;
    if (!areClipsSounding() && Clock::now() >= m_lingersUntil)
        closeDevice();
}

/// Something is to sound, or to be ready to, as soon as there is a device.
bool OpenALAudioOutput::isAwaited() const {
    return !m_device &&
           (m_holds > 0 || std::any_of(m_clips.begin(), m_clips.end(),
                                       [](const auto& clip) { return clip->isRequested(); }));
}

/// Without the lock, as are all calls that may wait for the sound server.
template <class Call>
void OpenALAudioOutput::unlocked(std::unique_lock<std::mutex>& lock, Call call) {
    m_blockedSince = Clock::now();
    lock.unlock();
    call();
    lock.lock();
    m_blockedSince.reset();
}

bool OpenALAudioOutput::closeLater(std::unique_lock<std::mutex>& lock) {
    if (!m_closing)
        return false;
    unlocked(lock, [device = std::move(m_closing)]() mutable { device.reset(); });
    return true;
}

bool OpenALAudioOutput::tryToOpen(std::unique_lock<std::mutex>& lock) {
    const bool due = isAwaited() && Clock::now() >= m_nextAttempt;
    if (m_device || m_quit || (m_answered == m_requests && !due))
        return false;
    const std::size_t requests = m_requests;
    std::variant<std::unique_ptr<OpenALAudioDevice>, AudioError> opened;
    unlocked(lock, [&] {
        if (!m_library)
            m_library = OpenALAudioLibrary::load();
        if (m_library)
            opened = OpenALAudioDevice::open(*m_library);
        else
            opened = AudioError{"OpenAL is not installed."};
        // Whatever back end it has settled on, the next attempt is to choose anew.
        if (std::holds_alternative<AudioError>(opened))
            m_library.reset();
    });
    m_answered = requests;
    if (auto* error = std::get_if<AudioError>(&opened)) {
        m_openError = std::move(*error);
        m_nextAttempt = Clock::now() + attemptInterval;
    } else {
        m_device = std::move(std::get<std::unique_ptr<OpenALAudioDevice>>(opened));
        m_answered = m_requests;
        for (const auto& clip : m_clips)
            clip->deviceOpened(*m_device);
    }
    m_served.notify_all();
    return true;
}

/// Stops the stream after a while in which nothing needed it, and starts it for what does.
bool OpenALAudioOutput::pauseOrResume(std::unique_lock<std::mutex>& lock) {
    const bool needed = isStreamNeeded();
    if (!m_device || needed || m_device->isPaused())
        m_idleSince.reset();
    else if (!m_idleSince)
        m_idleSince = Clock::now();
    if (!m_device)
        return false;
    // The device is only ever closed on this thread, so it is there while the call takes.
    OpenALAudioDevice& device = *m_device;
    if (needed && device.isPaused())
        unlocked(lock, [&] { device.resume(); });
    else if (m_idleSince && Clock::now() - *m_idleSince >= idleLimit())
        unlocked(lock, [&] { device.pause(); });
    else
        return false;
    return true;
}

/// A held output is kept running by a silent stream, where there can be one, since that costs next
/// to nothing while the device's own wakes the processor hundreds of times a second.
bool OpenALAudioOutput::keepRunning(std::unique_lock<std::mutex>& lock) {
    if (!m_device || m_holds == 0) {
        m_silenceTried = false;
        if (!m_silence)
            return false;
        unlocked(lock, [silence = std::move(m_silence)]() mutable { silence.reset(); });
        return true;
    }
    if (m_silenceTried || !m_device->isOnSoundServer())
        return false;
    m_silenceTried = true;
    std::unique_ptr<PulseAudioSilence> silence;
    unlocked(lock, [&] { silence = PulseAudioSilence::start(); });
    m_silence = std::move(silence);
    return true;
}

void OpenALAudioOutput::tidyClips() {
    for (const auto& clip : m_clips) {
        clip->tidy();
        if (clip->isSounding() || clip->isFading())
            m_lingersUntil = Clock::now() + lingerTime;
        else if (clip->isAbandoned())
            clip->leaveDevice(false);
    }
    std::erase_if(m_clips,
                  [](const auto& clip) { return clip->isAbandoned() && !clip->isFading(); });
}

} // namespace quorvane
