#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Audio.h"
#include "platform/linux/audio/OpenALAudioDevice.h"

namespace quorvane {

/// What a player node has scheduled and how far it is: an OpenAL source, with a queue of buffers of
/// which some may still wait for a device. The output that it plays on guards it with its mutex.
class OpenALAudioVoice {
public:
    using Completion = AudioPlayerNode::Completion;
    using Completions = std::vector<Completion>;

    /// The engine that the node is attached to, as an identity only; null without one.
    const void* engine = nullptr;

    void schedule(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                  Completion completion);
    void setVolume(float volume);
    /// Hands the device what it does not have yet, and sounds. The completions are of what had
    /// sounded to its end unnoticed.
    [[nodiscard]] Completions play(OpenALAudioDevice& device);
    [[nodiscard]] Completions pause();
    /// Silent, rewound, with nothing scheduled and nothing left on the device. The completions are
    /// of everything that was scheduled.
    [[nodiscard]] Completions stop();
    /// Takes out what has sounded to its end.
    [[nodiscard]] Completions takeFinished();

    /// Told to play; what is scheduled sounds at once.
    [[nodiscard]] bool isPlaying() const { return m_playing; }

    [[nodiscard]] bool isSounding() const { return m_playing && m_uploadedCount > 0; }

    [[nodiscard]] bool isEmpty() const { return m_scheduled.empty(); }

    /// Time until the buffer that sounds now has been mixed to its end, the longest there is for a
    /// loop; none in silence.
    [[nodiscard]] std::optional<std::chrono::nanoseconds> timeToEnd() const;

private:
    struct Scheduled {
        std::shared_ptr<const PCMBuffer> buffer;
        bool loops = false;
        Completion completion;
        ALuint name = 0;
    };

    void createSource();
    void upload(Scheduled& scheduled);
    void uploadUpToLoop();
    void loopWhenAlone();
    void takeHeads(std::size_t count, Completions& completions);

    OpenALAudioDevice* m_device = nullptr;
    ALuint m_source = 0;
    std::deque<Scheduled> m_scheduled;
    // Of those, from the head, how many the source has in its queue.
    std::size_t m_uploadedCount = 0;
    bool m_playing = false;
    float m_volume = 1;
};

} // namespace quorvane
