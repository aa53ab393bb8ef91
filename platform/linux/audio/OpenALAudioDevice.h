#pragma once

#include <chrono>
#include <memory>
#include <variant>

#include "base/NonCopyable.h"
#include "platform/Audio.h"
#include "platform/linux/audio/OpenALAudioLibrary.h"

namespace quorvane {

/// An open output device and the one context on it, which is OpenAL's current one while this object
/// lives. One thread at a time opens, closes, pauses and
/// resumes, all of which wait for the sound server; meanwhile others may ask.
class OpenALAudioDevice : NonCopyable {
public:
    /// Opens the default device; the error when there is none that anybody could hear.
    [[nodiscard]] static std::variant<std::unique_ptr<OpenALAudioDevice>, AudioError>
    open(const OpenALAudioLibrary& library);
    ~OpenALAudioDevice();

    [[nodiscard]] const OpenALAudioLibrary& al() const { return m_al; }

    /// False for good once the device or its server has gone.
    [[nodiscard]] bool isConnected() const;
    /// It is a stream on PulseAudio or what answers in its place, rather than a sound card.
    [[nodiscard]] bool isOnSoundServer() const;
    /// How long after the mixing of a frame it is heard; 0 where that is unknown.
    [[nodiscard]] std::chrono::nanoseconds latency() const;

    /// Stops the stream, which then costs nothing, until `resume`. Both may be repeated.
    void pause();
    void resume();

    [[nodiscard]] bool isPaused() const { return m_paused; }

private:
    OpenALAudioDevice(const OpenALAudioLibrary& library, ALCdevice* device)
        : m_al(library), m_device(device) {}

    bool createContext();
    [[nodiscard]] bool isAudible() const;

    const OpenALAudioLibrary& m_al;
    ALCdevice* m_device;
    ALCcontext* m_context = nullptr;
    bool m_paused = false;
};

} // namespace quorvane
