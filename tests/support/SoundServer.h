#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/NonCopyable.h"

namespace quorvane {

enum class SoundServerKind {
    /// Its null sinks take nothing back of what they have buffered: the monitor of one that does
    /// lacks the first frames of every client's sound.
    PulseAudio,
    /// With WirePlumber and its own PulseAudio server.
    PipeWire,
};

void PrintTo(SoundServerKind kind, std::ostream* stream);

/// What the server tells of a stream that it plays.
struct PlayedStream {
    int index = 0;
    /// The index of its sink.
    unsigned sink = 0;
    bool isCorked = false;
    bool isMuted = false;
    /// "65%", of the left channel.
    std::string volume;
    /// "float32le 2ch 44100Hz".
    std::string format;
    std::map<std::string, std::string> properties;
};

/// A sound server of the test's own at 44.1 kHz, with a null sink named "out" and its files in a
/// folder of the test. The environment of this process names it as the server, so it is made before
/// there is a second thread. What cannot be done throws.
class SoundServer : NonCopyable {
public:
    static std::unique_ptr<SoundServer> make(SoundServerKind kind,
                                             const std::filesystem::path& folder);
    virtual ~SoundServer() = default;

    /// Returns when it accepts connections and has its sink.
    virtual void start() = 0;
    virtual void kill() = 0;
    /// It keeps its connections and no longer answers, until `thaw`.
    virtual void freeze() = 0;
    virtual void thaw() = 0;

    /// Adds a null sink, which does not become the default one.
    void addSink(const std::string& name);
    /// Adds one that is heard 0.15 to 0.25 s after it was given the sound. PulseAudio says so.
    virtual void addLateSink(const std::string& name) = 0;
    virtual void removeSink(const std::string& name) = 0;
    /// Makes it the default one.
    void chooseSink(const std::string& name);
    void suspendSink(const std::string& name, bool suspended);
    [[nodiscard]] unsigned sinkIndex(const std::string& name) const;
    [[nodiscard]] std::vector<PlayedStream> streams() const;

    /// Runs pactl, which controls the server, and returns what it prints.
    // NOLINTNEXTLINE(modernize-use-nodiscard): often called for what it does.
    std::string control(const std::vector<std::string>& arguments) const;

    [[nodiscard]] const std::filesystem::path& folder() const { return m_folder; }

protected:
    explicit SoundServer(std::filesystem::path folder);

    /// What every null sink is made with, after its name. PipeWire does not know the last one.
    static constexpr std::string_view sinkArguments =
        " rate=44100 channels=2 format=float32le norewinds=1";

    [[nodiscard]] std::string socketPath() const { return (m_folder / "native").string(); }

    [[nodiscard]] bool acceptsConnections() const;
    [[nodiscard]] bool hasSink(const std::string& name) const;
    /// Whether the default sink is the named one.
    [[nodiscard]] bool isDefaultSink(std::string_view name) const;

private:
    std::filesystem::path m_folder;
};

} // namespace quorvane
