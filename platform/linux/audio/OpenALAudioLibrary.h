#pragma once

#include <memory>

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

#include "base/NonCopyable.h"

namespace quorvane {

/// OpenAL's functions, from a library that is loaded while this object lives.
///
/// Loaded at run time because OpenAL Soft chooses its back end once, when it is first used: a sound
/// server that appears later, or a sound card after the server went, is only found by a library
/// that was unloaded in between.
class OpenALAudioLibrary : NonCopyable {
public:
    /// Null when OpenAL is not installed, or is too old to have a function that is needed.
    [[nodiscard]] static std::unique_ptr<OpenALAudioLibrary> load();
    ~OpenALAudioLibrary();

    // Under the names that OpenAL gives them.
    LPALCOPENDEVICE alcOpenDevice = nullptr;
    LPALCCLOSEDEVICE alcCloseDevice = nullptr;
    LPALCCREATECONTEXT alcCreateContext = nullptr;
    LPALCDESTROYCONTEXT alcDestroyContext = nullptr;
    LPALCMAKECONTEXTCURRENT alcMakeContextCurrent = nullptr;
    LPALCGETSTRING alcGetString = nullptr;
    LPALCGETINTEGERV alcGetIntegerv = nullptr;
    LPALCGETPROCADDRESS alcGetProcAddress = nullptr;
    LPALGENSOURCES alGenSources = nullptr;
    LPALDELETESOURCES alDeleteSources = nullptr;
    LPALSOURCEF alSourcef = nullptr;
    LPALSOURCEI alSourcei = nullptr;
    LPALGETSOURCEI alGetSourcei = nullptr;
    LPALSOURCEPLAY alSourcePlay = nullptr;
    LPALSOURCEPAUSE alSourcePause = nullptr;
    LPALSOURCESTOP alSourceStop = nullptr;
    LPALSOURCEQUEUEBUFFERS alSourceQueueBuffers = nullptr;
    LPALSOURCEUNQUEUEBUFFERS alSourceUnqueueBuffers = nullptr;
    LPALGENBUFFERS alGenBuffers = nullptr;
    LPALDELETEBUFFERS alDeleteBuffers = nullptr;
    LPALBUFFERDATA alBufferData = nullptr;

    // Extensions; each is null where this OpenAL lacks it.
    LPALCDEVICEPAUSESOFT alcDevicePauseSOFT = nullptr;
    LPALCDEVICERESUMESOFT alcDeviceResumeSOFT = nullptr;
    LPALCGETINTEGER64VSOFT alcGetInteger64vSOFT = nullptr;

private:
    explicit OpenALAudioLibrary(void* handle) : m_handle(handle) {}

    bool resolve();

    void* m_handle;
};

} // namespace quorvane
