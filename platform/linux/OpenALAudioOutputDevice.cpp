#include <algorithm>
#include <utility>

#include "platform/linux/OpenALAudioOutput.h"

namespace quorvane {

namespace {

// For one who waits for a device. An attempt that fails costs some 2 ms of processor time.
constexpr std::chrono::milliseconds attemptInterval{500};

} // namespace

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
    for (const auto& clip : m_clips)
        clip->deviceOpened(*m_device);
    return std::nullopt;
}

void OpenALAudioOutput::closeDevice() {
    for (const auto& clip : m_clips)
        clip->leaveDevice(false);
    m_device.reset();
    m_idleSince.reset();
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
    if (!m_device || !m_runningEngines.empty() || m_holds > 0)
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

void OpenALAudioOutput::tryToOpen() {
    const auto now = Clock::now();
    if (!isAwaited() || now < m_nextAttempt)
        return;
    if (openDevice())
        m_nextAttempt = now + attemptInterval;
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
