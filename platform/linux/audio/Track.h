#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Audio.h"
#include "platform/linux/audio/Voice.h"

namespace quorvane {

/// What a node or a file player is to sound like, and what of that is on the output stream. Its
/// sounds follow each other on a line of frames of its own. A change of what is wanted takes effect
/// when the track is laid again. The output guards it with its mutex.
class Track {
public:
    using Clock = std::chrono::steady_clock;
    using Completion = AudioPlayerNode::Completion;
    using Completions = std::vector<Completion>;

    enum class AtEnd {
        /// Goes on with what is appended: a node.
        Waits,
        /// Stops, back at the start: a file player.
        Stops,
    };

    explicit Track(AtEnd atEnd) : m_atEnd(atEnd) {}

    // What is wanted.

    /// Adds `sound`, repeated until `frames` frames have been played.
    void append(std::shared_ptr<const PCMBuffer> sound, std::int64_t frames, Completion completion);
    /// The same in the place of all others, whose completions are not called.
    void replace(std::shared_ptr<const PCMBuffer> sound, std::int64_t frames);
    void play(Clock::time_point now);
    /// Keeps its place.
    void pause(Clock::time_point now);
    /// Stops, and drops all sounds, whose completions it returns.
    [[nodiscard]] Completions clear();
    /// To this frame of its line, also during playback.
    void moveTo(std::int64_t place, Clock::time_point now);

    void setGain(float gain) { m_gain = gain; }

    [[nodiscard]] bool isPlaying() const { return m_playing; }

    [[nodiscard]] bool isEmpty() const { return m_parts.empty(); }

    /// The frame of its line by the clock.
    [[nodiscard]] std::int64_t place(Clock::time_point now) const;

    // What is on the stream.

    /// Puts what is wanted on the stream from its frame `frame` on, in the place of what was last
    /// confirmed.
    void lay(std::int64_t frame);

    /// What was laid last is what the server plays.
    void confirm() { m_confirmed = m_laid; }

    /// Takes out what was heard to its end when the stream's frame `frame` was.
    [[nodiscard]] Completions takeHeard(std::int64_t frame);
    /// The stream is closed.
    void leaveStream();
    /// Nothing is on the stream any more, which did not play since `lostAt`: a track that plays
    /// goes on where it would be by now, unless that is beyond its end or it has waited for too
    /// long.
    [[nodiscard]] Completions recover(Clock::time_point now, Clock::time_point lostAt);
    void addTo(std::span<float> output, std::int64_t first) const;

    /// Whether it wants to sound, or still fades out at the stream's frame `frame`.
    [[nodiscard]] bool needsStream(std::int64_t frame) const;
    /// The stream's frame at which the next of its sounds ends; none if nothing that ends sounds.
    [[nodiscard]] std::optional<std::int64_t> nextEnd() const;
    /// Whether it plays and has not waited for too long for an output, which was lost at `lostAt`.
    [[nodiscard]] bool waitsStill(Clock::time_point now, Clock::time_point lostAt) const;

private:
    struct Scheduled {
        Part part;
        Completion completion;
    };

    struct OnStream {
        std::optional<Voice> voice;
        // Of earlier takes.
        std::vector<Voice> fading;
        std::uint64_t take = 0;
        // Of the line, while there is no voice.
        std::int64_t place = 0;
    };

    [[nodiscard]] std::int64_t lineEnd() const;
    [[nodiscard]] std::vector<Part> parts() const;
    void beginTake(std::int64_t place);

    AtEnd m_atEnd;
    std::deque<Scheduled> m_parts;
    bool m_playing = false;
    float m_gain = 1;
    // Where it was at a time, from which it has been playing.
    std::int64_t m_place = 0;
    Clock::time_point m_since;
    // The stream went while it sounded.
    bool m_wasCutOff = false;
    // A take is what is played without a jump; each begins at a place of the line.
    std::uint64_t m_take = 0;
    std::int64_t m_takePlace = 0;

    OnStream m_confirmed;
    OnStream m_laid;
};

} // namespace quorvane
