#include "platform/linux/audio/OpenALAudioDevice.h"

#include <array>
#include <string_view>

namespace quorvane {

std::variant<std::unique_ptr<OpenALAudioDevice>, AudioError>
OpenALAudioDevice::open(const OpenALAudioLibrary& library) {
    ALCdevice* opened = library.alcOpenDevice(nullptr);
    if (!opened)
        return AudioError{"There is no sound output device."};
    std::unique_ptr<OpenALAudioDevice> device(new OpenALAudioDevice(library, opened));
    if (!device->isAudible())
        return AudioError{"There is no sound output device that can be heard."};
    if (!device->createContext())
        return AudioError{"The sound output device cannot be used."};
    return device;
}

OpenALAudioDevice::~OpenALAudioDevice() {
    if (m_context) {
        m_al.alcMakeContextCurrent(nullptr);
        m_al.alcDestroyContext(m_context);
    }
    m_al.alcCloseDevice(m_device);
}

/// A person's settings may name the back ends that only pretend.
bool OpenALAudioDevice::isAudible() const {
    const std::string_view name = m_al.alcGetString(m_device, ALC_ALL_DEVICES_SPECIFIER);
    return name != "No Output" && name != "Wave File Writer";
}

bool OpenALAudioDevice::createContext() {
    constexpr std::array<ALCint, 3> attributes{ALC_HRTF_SOFT, ALC_FALSE, 0};
    m_context = m_al.alcCreateContext(m_device, attributes.data());
    return m_context && m_al.alcMakeContextCurrent(m_context);
}

bool OpenALAudioDevice::isConnected() const {
    ALCint connected = ALC_TRUE;
    m_al.alcGetIntegerv(m_device, ALC_CONNECTED, 1, &connected);
    return connected == ALC_TRUE;
}

/// OpenAL passes on the server's description of the output; the default device of its other back
/// ends is called "ALSA Default" and the like.
bool OpenALAudioDevice::isOnSoundServer() const {
    const std::string_view name = m_al.alcGetString(m_device, ALC_ALL_DEVICES_SPECIFIER);
    return !name.ends_with(" Default");
}

std::chrono::nanoseconds OpenALAudioDevice::latency() const {
    ALCint64SOFT nanoseconds = 0;
    if (m_al.alcGetInteger64vSOFT)
        m_al.alcGetInteger64vSOFT(m_device, ALC_DEVICE_LATENCY_SOFT, 1, &nanoseconds);
    return std::chrono::nanoseconds(nanoseconds);
}

void OpenALAudioDevice::pause() {
    if (m_paused || !m_al.alcDevicePauseSOFT || !m_al.alcDeviceResumeSOFT)
        return;
    m_al.alcDevicePauseSOFT(m_device);
    m_paused = true;
}

void OpenALAudioDevice::resume() {
    if (!m_paused)
        return;
    m_al.alcDeviceResumeSOFT(m_device);
    m_paused = false;
}

} // namespace quorvane
