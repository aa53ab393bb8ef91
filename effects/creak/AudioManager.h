#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

#include "base/NonCopyable.h"
#include "base/Observable.h"
#include "platform/Platform.h"

namespace quorvane {

/// Plays the hinge creak while the lid moves: plays it while the hinge is fast enough, pauses it
/// when the hinge slows down, resumes it there, and starts over only after it has played to its
/// end. Main thread only; owned through a shared pointer.
class AudioManager : public std::enable_shared_from_this<AudioManager>, NonCopyable {
public:
    [[nodiscard]] static std::shared_ptr<AudioManager> create(const Platform& platform);
    ~AudioManager();

    /// Decodes the bundle's resource into memory. If it is missing or cannot be decoded, prints a
    /// line and stays silent.
    void loadSound(std::string_view name, std::string_view extension);
    void loadSound(const std::filesystem::path& url);

    /// Takes the hinge's velocity in degrees per second, of either sign. Called 60 times a second.
    void update(double velocity);

    /// Stops the sound; the next creak starts from its beginning. The engine keeps running.
    void stop();

    /// Slowest absolute velocity that creaks, in degrees per second.
    [[nodiscard]] const Observable<double>& velocityThreshold() const {
        return m_velocityThreshold;
    }

    /// From `play` on the node until it is paused, stopped or finished.
    [[nodiscard]] const Observable<bool>& isPlaying() const { return m_isPlaying; }

    /// A sound is decoded and connected.
    [[nodiscard]] const Observable<bool>& isLoaded() const { return m_isLoaded; }

    /// Called after each play-through of the sound, also one that the loss of the output device cut
    /// short; not after one that was stopped.
    std::function<void()> onCompleted;

private:
    explicit AudioManager(const Platform& platform);
    void failToLoad(const AudioError& error);
    void creak();
    void pause();
    void scheduleBuffer();
    void finishPlay(unsigned play);

    Platform m_platform;
    Observable<double> m_velocityThreshold{1.0};
    Observable<bool> m_isPlaying;
    Observable<bool> m_isLoaded;
    std::shared_ptr<AudioEngine> m_engine;
    std::shared_ptr<AudioPlayerNode> m_playerNode;
    std::shared_ptr<PCMBuffer> m_audioBuffer;
    bool m_needsSchedule = true;
    // Number of the present play. The node also completes what `stop` drops, perhaps when the next
    // play has begun already.
    unsigned m_play = 0;
};

} // namespace quorvane
