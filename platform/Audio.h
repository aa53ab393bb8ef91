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

/// Why an audio call failed, as a text for the user.
struct AudioError {
    std::string description;
};

/// The layout of sound: 32-bit float samples, `channels` of them per frame.
struct AudioFormat {
    /// Frames per second.
    double sampleRate = 0;
    unsigned channels = 0;

    bool operator==(const AudioFormat&) const = default;
};

/// Decoded sound in memory. Filled on the main thread, read-only once scheduled.
struct PCMBuffer {
    AudioFormat format;
    /// Frames allocated, and frames that contain sound.
    std::uint32_t frameCapacity = 0;
    std::uint32_t frameLength = 0;
    /// Interleaved, frameCapacity * channels values, full scale is -1 to 1.
    std::vector<float> samples;
};

/// A sound file opened for reading. Encoder delay and padding are excluded.
class AudioFile : NonCopyable {
public:
    virtual ~AudioFile() = default;

    [[nodiscard]] virtual AudioFormat processingFormat() const = 0;
    /// Length of the file in frames.
    [[nodiscard]] virtual std::int64_t length() const = 0;
    /// Reads the whole file into `buffer` and sets its frameLength. Returns an error if that fails,
    /// or if the file ends before its length.
    virtual std::optional<AudioError> read(PCMBuffer& buffer) = 0;
};

/// How a scheduled buffer is played.
enum class BufferOptions {
    Once,
    /// Repeated without a gap until the node is stopped.
    Loops,
};

/// Plays scheduled buffers through the engine that it is attached to. Main thread only; completion
/// handlers are called on an audio thread.
class AudioPlayerNode : NonCopyable {
public:
    using Completion = std::function<void()>;

    virtual ~AudioPlayerNode() = default;

    /// Queues `buffer`, to play as soon as possible once the node plays. `completion` (may be
    /// empty) is called once, when the buffer has played to its end or is dropped by `stop` or by
    /// the loss of the output device; possibly late, and never from within a call of the node.
    virtual void scheduleBuffer(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                                Completion completion) = 0;
    /// Starts, or resumes after `pause`. The engine must be running.
    virtual void play() = 0;
    /// Silent at once; keeps its position.
    virtual void pause() = 0;
    /// Silent at once; drops what is scheduled and rewinds.
    virtual void stop() = 0;
    /// Linear gain, 0 to 1, initially 1. Takes effect at once, without a click.
    virtual void setVolume(float volume) = 0;
    [[nodiscard]] virtual float volume() const = 0;
};

/// Plays one sound file, decoded into memory once, on the output device, which it opens on first
/// use. Main thread only.
class AudioFilePlayer : NonCopyable {
public:
    virtual ~AudioFilePlayer() = default;

    /// Length of the sound in seconds, without repetitions.
    [[nodiscard]] virtual double duration() const = 0;
    /// Whether there is a sound to play: false if decoding has found the file damaged, perhaps in
    /// its middle. While the file is still being decoded, waits for the result, at most 50 ms, and
    /// then assumes that there is.
    [[nodiscard]] virtual bool hasSound() const = 0;
    /// Position in the sound in seconds; advances during playback, is kept by `stop`, and is 0
    /// after the end.
    [[nodiscard]] virtual double currentTime() const = 0;
    /// Moves to that position, also during playback; clamped to 0 and the duration.
    virtual void setCurrentTime(double seconds) = 0;
    /// Linear gain, 0 to 1, initially 1. Takes effect at once, without a click.
    [[nodiscard]] virtual float volume() const = 0;
    virtual void setVolume(float volume) = 0;
    /// Number of repetitions after the first playback; below 0: until `stop`, without a gap.
    /// Initially 0. To be set before `play`.
    [[nodiscard]] virtual int numberOfLoops() const = 0;
    virtual void setNumberOfLoops(int count) = 0;
    /// Prepares what does not need a device; false if that fails.
    virtual bool prepareToPlay() = 0;
    /// Plays from the current time; does nothing during playback. False without a sound. False also
    /// without an output device: if one appears within some seconds, as after a wake-up, playback
    /// starts then, at the position that the sound would have reached; later the request is
    /// dropped, unless the sound is endless.
    virtual bool play() = 0;
    /// Silent at once, without a click; keeps its position.
    virtual void stop() = 0;
    [[nodiscard]] virtual bool isPlaying() const = 0;
};

/// Keeps the output device open and running while it exists, so that a sound after a pause starts
/// without delay.
class AudioOutputHold : NonCopyable {
public:
    virtual ~AudioOutputHold() = default;
};

/// The audio graph: nodes, a mixer, the output device. Main thread only.
class AudioEngine : NonCopyable {
public:
    virtual ~AudioEngine() = default;

    virtual void attach(const std::shared_ptr<AudioPlayerNode>& node) = 0;
    /// Connects an attached node, which plays buffers of `format`, to the main mixer.
    virtual void connectToMainMixer(const std::shared_ptr<AudioPlayerNode>& node,
                                    const AudioFormat& format) = 0;
    /// False before `start`, after `stop` and after the loss of the output device.
    [[nodiscard]] virtual bool isRunning() const = 0;
    /// Opens the output device if it is not open. Returns an error if there is none; the next call
    /// tries again.
    virtual std::optional<AudioError> start() = 0;
    virtual void stop() = 0;
};

/// Creates engines, nodes, files, buffers and players. Does not open the device itself. Main thread
/// only.
class AudioService : NonCopyable {
public:
    virtual ~AudioService() = default;

    virtual std::shared_ptr<AudioEngine> createEngine() = 0;
    virtual std::shared_ptr<AudioPlayerNode> createPlayerNode() = 0;
    /// Opens `path` for reading; an error if it is missing, unreadable or not a sound file.
    virtual std::variant<std::shared_ptr<AudioFile>, AudioError>
    openFile(const std::filesystem::path& path) = 0;
    /// An empty buffer; null if it cannot be made (no channels, no memory).
    virtual std::shared_ptr<PCMBuffer> createBuffer(const AudioFormat& format,
                                                    std::uint32_t frameCapacity) = 0;
    /// The format that engines use; none unless `sampleRate` is finite and above 0 and `channels`
    /// is 1 or 2.
    [[nodiscard]] virtual std::optional<AudioFormat> standardFormat(double sampleRate,
                                                                    unsigned channels) = 0;
    /// A player of the file `path`; an error if it is missing, unreadable or not a sound file.
    virtual std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
    createFilePlayer(const std::filesystem::path& path) = 0;
    /// Never null, even without a device.
    [[nodiscard]] virtual std::shared_ptr<AudioOutputHold> holdOutput() = 0;
};

} // namespace quorvane
