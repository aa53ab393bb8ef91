#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/NonCopyable.h"

namespace quorvane {

/// Why an audio call failed, in words for a person.
struct AudioError {
    std::string description;
};

/// How sound is laid out: 32-bit float samples, `channels` of them a frame.
struct AudioFormat {
    /// Frames per second.
    double sampleRate = 0;
    unsigned channels = 0;

    bool operator==(const AudioFormat&) const = default;
};

/// Decoded sound in memory. Filled on the main thread before it is scheduled, read-only after.
struct PCMBuffer {
    AudioFormat format;
    /// Frames that there is room for, and frames that hold sound.
    std::uint32_t frameCapacity = 0;
    std::uint32_t frameLength = 0;
    /// Interleaved, frameCapacity * channels values, full scale at -1 and 1.
    std::vector<float> samples;
};

/// A sound file opened for reading. The encoder's delay and padding are not part of its sound.
class AudioFile : NonCopyable {
public:
    virtual ~AudioFile() = default;

    [[nodiscard]] virtual AudioFormat processingFormat() const = 0;
    /// Length of the file in frames.
    [[nodiscard]] virtual std::int64_t length() const = 0;
    /// Reads the whole file into `buffer` and sets its frameLength; the error if that fails, also
    /// when the file ends before its length.
    virtual std::optional<AudioError> read(PCMBuffer& buffer) = 0;
};

/// How a scheduled buffer is played.
enum class BufferOptions {
    Once,
    /// Over and over without a gap, until the node is stopped.
    Loops,
};

/// Plays scheduled buffers through the engine that it is attached to. Main thread only, except that
/// a completion handler is called from a thread of the audio system.
class AudioPlayerNode : NonCopyable {
public:
    using Completion = std::function<void()>;

    virtual ~AudioPlayerNode() = default;

    /// Queues `buffer` to sound as soon as possible once the node plays. `completion` is called
    /// once when the buffer has sounded to its end, or when it is dropped by `stop` or by the loss
    /// of the output device; it may come late, and it never runs inside a call of the node. It may
    /// be empty.
    virtual void scheduleBuffer(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                                Completion completion) = 0;
    /// Starts, or resumes where `pause` left off. The engine must be running.
    virtual void play() = 0;
    /// Falls silent at once and keeps its place.
    virtual void pause() = 0;
    /// Falls silent at once, drops what was scheduled and rewinds.
    virtual void stop() = 0;
    /// Linear gain, 0 to 1; 1 in a new node. Changes what sounds at once, without a click.
    virtual void setVolume(float volume) = 0;
    [[nodiscard]] virtual float volume() const = 0;
};

/// Plays one sound file, decoded into memory once, on the output device, which it opens when it
/// first needs it. Main thread only.
class AudioFilePlayer : NonCopyable {
public:
    virtual ~AudioFilePlayer() = default;

    /// Length of the sound in seconds, whatever the number of loops.
    [[nodiscard]] virtual double duration() const = 0;
    /// Place in the sound in seconds; it runs while the sound plays, is kept by `stop`, and is 0
    /// after the end.
    [[nodiscard]] virtual double currentTime() const = 0;
    /// Moves to that place, also while the sound plays; bounded by 0 and the duration.
    virtual void setCurrentTime(double seconds) = 0;
    /// Linear gain, 0 to 1; 1 in a new player. Changes what sounds at once, without a click.
    [[nodiscard]] virtual float volume() const = 0;
    virtual void setVolume(float volume) = 0;
    /// How often the sound comes again after the first time; below 0: until it is stopped, without
    /// a gap. 0 in a new player. To be set before `play`.
    [[nodiscard]] virtual int numberOfLoops() const = 0;
    virtual void setNumberOfLoops(int count) = 0;
    /// Does ahead of time what can be done without a device; false if that fails.
    virtual bool prepareToPlay() = 0;
    /// Sounds from the current time on; does nothing to a sound that plays. False if that cannot be
    /// for the moment: a device that comes back within some seconds, as after a wake-up, is still
    /// played on, from where the sound would be by then; after that the request is forgotten.
    virtual bool play() = 0;
    /// Falls silent at once, without a click, and keeps its place.
    virtual void stop() = 0;
    [[nodiscard]] virtual bool isPlaying() const = 0;
};

/// While it lives, the output device is kept open and running, so that the first sound after a rest
/// comes as fast as the hundredth.
class AudioOutputHold : NonCopyable {
public:
    virtual ~AudioOutputHold() = default;
};

/// The audio graph: nodes, a mixer, the output device. Main thread only.
class AudioEngine : NonCopyable {
public:
    virtual ~AudioEngine() = default;

    virtual void attach(const std::shared_ptr<AudioPlayerNode>& node) = 0;
    /// Connects an attached node to the main mixer; what it plays then has this format.
    virtual void connectToMainMixer(const std::shared_ptr<AudioPlayerNode>& node,
                                    const AudioFormat& format) = 0;
    /// False before `start`, after `stop` and when the output device has gone.
    [[nodiscard]] virtual bool isRunning() const = 0;
    /// Opens the output device if it is not open yet. The error when there is none to open; the
    /// next call tries again.
    virtual std::optional<AudioError> start() = 0;
    virtual void stop() = 0;
};

/// Where engines, nodes, files and buffers come from. Opens no device by itself.
class AudioService : NonCopyable {
public:
    virtual ~AudioService() = default;

    virtual std::shared_ptr<AudioEngine> createEngine() = 0;
    virtual std::shared_ptr<AudioPlayerNode> createPlayerNode() = 0;
    /// Opens `path` for reading; the error when it is missing, unreadable or no sound file.
    virtual std::variant<std::shared_ptr<AudioFile>, AudioError>
    openFile(const std::filesystem::path& path) = 0;
    /// An empty buffer; null when it cannot be made (no channels, no memory).
    virtual std::shared_ptr<PCMBuffer> createBuffer(const AudioFormat& format,
                                                    std::uint32_t frameCapacity) = 0;
    /// The format that engines work in: 32-bit float samples; none if no sound has such a rate
    /// (above 0, finite) or number of channels (1 or 2).
    [[nodiscard]] virtual std::optional<AudioFormat> standardFormat(double sampleRate,
                                                                    unsigned channels) = 0;
    /// A player of the file `path`; the error when it is missing, unreadable or no sound file.
    virtual std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
    createFilePlayer(const std::filesystem::path& path) = 0;
    /// Holds the output device open; never null, also without any device.
    [[nodiscard]] virtual std::shared_ptr<AudioOutputHold> holdOutput() = 0;
};

} // namespace quorvane
