#include "platform/linux/audio/OpenALAudioLibrary.h"

#include <dlfcn.h>

namespace quorvane {

namespace {

// Functions and objects share a representation on every system that has dlsym.
template <class Function>
bool assign(Function& function, void* symbol) {
    function = reinterpret_cast<Function>(symbol);
    return function != nullptr;
}

void ignoreAlsaError(const char*, int, const char*, int, const char*, ...) {}

/// ALSA tells standard error about every device that it cannot open, which is ordinary where there
/// is none. Its library stays loaded, or it would forget.
void silenceAlsa() {
    using Handler = void (*)(const char*, int, const char*, int, const char*, ...);
    using SetHandler = int (*)(Handler);
    static void* const alsa = dlopen("libasound.so.2", RTLD_LAZY | RTLD_LOCAL);
    SetHandler setHandler = nullptr;
    if (alsa && assign(setHandler, dlsym(alsa, "snd_lib_error_set_handler")))
        setHandler(&ignoreAlsaError);
}

} // namespace

std::unique_ptr<OpenALAudioLibrary> OpenALAudioLibrary::load() {
    silenceAlsa();
    void* handle = dlopen("libopenal.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        return nullptr;
    std::unique_ptr<OpenALAudioLibrary> library(new OpenALAudioLibrary(handle));
    if (!library->resolve())
        return nullptr;
    return library;
}

OpenALAudioLibrary::~OpenALAudioLibrary() {
    dlclose(m_handle);
}

bool OpenALAudioLibrary::resolve() {
    const auto find = [this](auto& function, const char* name) {
        return assign(function, dlsym(m_handle, name));
    };
    const bool complete =
        find(alcOpenDevice, "alcOpenDevice") && find(alcCloseDevice, "alcCloseDevice") &&
        find(alcCreateContext, "alcCreateContext") &&
        find(alcDestroyContext, "alcDestroyContext") &&
        find(alcMakeContextCurrent, "alcMakeContextCurrent") &&
        find(alcGetString, "alcGetString") && find(alcGetIntegerv, "alcGetIntegerv") &&
        find(alcGetProcAddress, "alcGetProcAddress") && find(alGenSources, "alGenSources") &&
        find(alDeleteSources, "alDeleteSources") && find(alSourcef, "alSourcef") &&
        find(alSourcei, "alSourcei") && find(alGetSourcei, "alGetSourcei") &&
        find(alSourcePlay, "alSourcePlay") && find(alSourcePause, "alSourcePause") &&
        find(alSourceStop, "alSourceStop") && find(alSourceQueueBuffers, "alSourceQueueBuffers") &&
        find(alSourceUnqueueBuffers, "alSourceUnqueueBuffers") &&
        find(alGenBuffers, "alGenBuffers") && find(alDeleteBuffers, "alDeleteBuffers") &&
        find(alBufferData, "alBufferData");
    if (!complete)
        return false;
    assign(alcDevicePauseSOFT, alcGetProcAddress(nullptr, "alcDevicePauseSOFT"));
    assign(alcDeviceResumeSOFT, alcGetProcAddress(nullptr, "alcDeviceResumeSOFT"));
    assign(alcGetInteger64vSOFT, alcGetProcAddress(nullptr, "alcGetInteger64vSOFT"));
    return true;
}

} // namespace quorvane
