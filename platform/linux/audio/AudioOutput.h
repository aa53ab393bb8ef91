#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/Audio.h"
#include "platform/linux/audio/PulseConnection.h"
#include "platform/linux/audio/PulseStream.h"
#include "platform/linux/audio/Track.h"

namespace quorvane {

/// The one stream on the sound server that all engines and file players share, and the thread that
/// talks to the server and calls completions. The tracks say what is to be heard. After a change
/// the thread asks for the frame that the server reads next, places the tracks from there on, and
/// writes the first quarter of a second over what it wrote before. It then asks again: if the
/// server has read past that frame meanwhile, the change is placed again, farther ahead; otherwise
/// the rest of the two seconds is written.
///
/// Everything is guarded by one mutex, which is never held while the server is waited for. The
/// stream is there while something sounds or a hold lives; soon after that it is corked, later
/// closed. Calls come from the main thread. The owner of the last reference must not be a
/// completion.
class AudioOutput : NonCopyable {
public:
    using Clock = std::chrono::steady_clock;

    /// Begins to connect to the server.
    [[nodiscard]] static std::shared_ptr<AudioOutput> create();

    // Engines are told apart by their address.

    /// An error if there was no server or no output at the last attempt; that brings the next.
    [[nodiscard]] std::optional<AudioError> startEngine(const void* engine);
    /// Stops the engine and clears the tracks that play on it.
    void stopEngine(const void* engine);
    [[nodiscard]] bool isRunning(const void* engine) const;

    /// Adds a track that plays on `engine`; null: by itself.
    void add(std::shared_ptr<Track> track, const void* engine);
    /// Its player is gone: it only fades out.
    void remove(const Track& track);

    /// Runs `access` on tracks with the mutex held, and has the thread update the stream.
    template <class Access>
    auto change(Access access) {
        const std::lock_guard lock(m_mutex);
        m_changed = true;
        m_connection.wake();
        return access();
    }

    template <class Access>
    auto look(Access access) const {
        const std::lock_guard lock(m_mutex);
        return access();
    }

    /// Whether there is an output, as far as is known: not after an attempt that failed. A change,
    /// which an attempt comes with.
    [[nodiscard]] bool isAvailable() const { return m_available; }

    /// Calls these completions on the audio thread; inside `change` only.
    void finish(Track::Completions completions);

    void hold();
    void release();

private:
    struct Member {
        std::shared_ptr<Track> track;
        const void* engine = nullptr;
        bool removed = false;
    };

    /// What the server said of its position, and when.
    struct Position {
        std::int64_t next = 0;
        std::int64_t heard = 0;
        Clock::time_point time;
    };

    AudioOutput() = default;
    void start(const std::shared_ptr<AudioOutput>& self);
    void end();

    // The audio thread's; with the mutex held.
    void run();
    void serve(std::unique_lock<std::mutex>& lock);
    void connectIfDue(std::unique_lock<std::mutex>& lock);
    void noticeConnection(Clock::time_point now);
    void openIfDue(Clock::time_point now);
    void streamReady();
    void lose();
    void closeStream();
    void step(Clock::time_point now);
    void serveStream(Clock::time_point now);
    void followPosition();
    void checkLaid(std::int64_t next);
    void recover(Clock::time_point now, Clock::time_point lostAt);
    [[nodiscard]] std::int64_t leastAhead() const;
    void layTracks(std::int64_t next);
    void write(std::int64_t frame, std::size_t frames);
    void fill();
    void lookAfterStandstill(Clock::time_point now);
    void ask(Clock::time_point now);
    void restIfSilent(Clock::time_point now);
    [[nodiscard]] std::optional<Clock::time_point> nextWake() const;
    [[nodiscard]] bool isNeeded(Clock::time_point now) const;
    [[nodiscard]] bool isAwaited(Clock::time_point now) const;
    [[nodiscard]] std::int64_t nextFrame(Clock::time_point now) const;
    [[nodiscard]] std::optional<Clock::time_point> nextQuestion() const;

    mutable std::mutex m_mutex;
    std::condition_variable m_hasEnded;
    bool m_quit = false;
    bool m_ended = false;

    std::vector<Member> m_members;
    std::vector<const void*> m_runningEngines;
    Track::Completions m_finished;
    std::size_t m_holds = 0;
    bool m_available = true;
    bool m_changed = false;

    PulseConnection m_connection;
    bool m_connected = false;
    std::unique_ptr<PulseStream> m_stream;
    bool m_streamReady = false;
    bool m_streamLost = false;
    bool m_streamChanged = false;
    bool m_corked = false;
    // Since when there has been nothing to be heard; none while there is.
    std::optional<Clock::time_point> m_silentSince;
    // Since when there has been no output.
    std::optional<Clock::time_point> m_lostAt;
    // An attempt to have one is asked for, or under way until a time.
    bool m_wantsAttempt = true;
    std::optional<Clock::time_point> m_attemptEnds;
    Clock::time_point m_nextAttempt;
    Clock::duration m_attemptInterval{};
    // The last position, none on a new or corked stream; the next, until it was looked at; when it
    // was asked for, until it came.
    std::optional<Position> m_position;
    std::optional<Position> m_newPosition;
    std::optional<Clock::time_point> m_askedAt;
    // Since when the server has not answered or not played, and when to look again.
    std::optional<Clock::time_point> m_stillSince;
    Clock::time_point m_nextLook;
    // The frame from which on the tracks were laid, until the server has confirmed it; how far
    // ahead of the server's position that is.
    std::optional<std::int64_t> m_unconfirmed;
    std::int64_t m_ahead = 0;
    // The frame after the last one that was written.
    std::int64_t m_written = 0;
    std::vector<float> m_samples;
    std::thread m_thread;
};

} // namespace quorvane
