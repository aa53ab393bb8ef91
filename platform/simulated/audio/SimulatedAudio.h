#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <variant>
#include <vector>

#include "platform/Audio.h"
#include "platform/RunLoop.h"
#include "platform/simulated/audio/SimulatedAudioFilePlayer.h"
#include "platform/simulated/audio/SimulatedAudioMachine.h"
#include "platform/simulated/audio/SimulatedAudioVoice.h"

namespace quorvane {

/// Records what would sound, on the run loop's clock. Main thread only.
class SimulatedAudio final : public AudioService {
public:
    explicit SimulatedAudio(RunLoop& runLoop,
                            std::shared_ptr<Faults> faults = std::make_shared<Faults>());
    ~SimulatedAudio() override;

    std::shared_ptr<AudioEngine> createEngine() override;
    std::shared_ptr<AudioPlayerNode> createPlayerNode() override;
    std::variant<std::shared_ptr<AudioFile>, AudioError>
    openFile(const std::filesystem::path& path) override;
    std::shared_ptr<PCMBuffer> createBuffer(const AudioFormat& format,
                                            std::uint32_t frameCapacity) override;
    std::optional<AudioFormat> standardFormat(double sampleRate, unsigned channels) override;
    std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
    createFilePlayer(const std::filesystem::path& path) override;
    [[nodiscard]] std::shared_ptr<AudioOutputHold> holdOutput() override;

    // The files of the machine. Any other path is a missing file.

    /// `samples` are interleaved and whole frames.
    void addFile(const std::filesystem::path& path, const AudioFormat& format,
                 std::vector<float> samples);
    /// A file that claims `claimedFrames` but contains only `samples`.
    void addTruncatedFile(const std::filesystem::path& path, const AudioFormat& format,
                          std::vector<float> samples, std::int64_t claimedFrames);
    /// A file that is damaged in its middle: it opens and has the length of `samples`, but cannot
    /// be read, and its players have no sound.
    void addDamagedFile(const std::filesystem::path& path, const AudioFormat& format,
                        std::vector<float> samples);
    /// A file that is not a sound file.
    void addNonAudioFile(const std::filesystem::path& path);

    /// Initially present. When it goes, running engines stop and drop what is scheduled on their
    /// nodes, and file players fall silent; without it no engine starts. When it comes back, a file
    /// player that has waited for at most SimulatedAudioFilePlayer::patience seconds plays on.
    void setOutputDevicePresent(bool present);

    // What has sounded.

    /// All sounds, in the order of their starts.
    [[nodiscard]] const SimulatedTimeline& timeline() const { return *m_timeline; }

    /// Forgets the sounds so far and the calls of nodes and file players; not while something
    /// sounds.
    void forget();

    /// The mix from one media time to another, as interleaved samples of `format` (1 or 2
    /// channels), without filtering. After the present time: what would sound without further
    /// calls.
    [[nodiscard]] std::vector<float> render(double from, double to,
                                            const AudioFormat& format) const;

    /// Number of nodes created.
    [[nodiscard]] std::size_t nodeCount() const { return m_voices.size(); }

    /// The state of the node created as number `index`, counted from 0; also after its destruction.
    [[nodiscard]] const SimulatedAudioVoice& node(std::size_t index) const {
        return *m_voices.at(index);
    }

    /// Number of file players created.
    [[nodiscard]] std::size_t filePlayerCount() const { return m_filePlayers.size(); }

    /// The file player created as number `index`, counted from 0; also after its owner dropped it.
    [[nodiscard]] const SimulatedAudioFilePlayer& filePlayer(std::size_t index) const {
        return *m_filePlayers.at(index);
    }

    /// Number of holds on the output device that exist.
    [[nodiscard]] std::size_t holdCount() const { return m_machine->holdCount; }

    /// Number of running engines.
    [[nodiscard]] std::size_t runningEngineCount() const;
    /// Number of calls of `start` on an engine that was not running, including failed ones.
    [[nodiscard]] std::size_t engineStartCount() const;

    /// Number of calls of `stop` on an engine.
    [[nodiscard]] std::size_t engineStopCount() const { return m_machine->engineStopCount; }

private:
    class File;
    class Hold;

    RunLoop& m_runLoop;
    std::shared_ptr<SimulatedTimeline> m_timeline;
    std::vector<std::shared_ptr<SimulatedAudioVoice>> m_voices;
    std::vector<std::shared_ptr<SimulatedAudioFilePlayer>> m_filePlayers;
    std::shared_ptr<SimulatedAudioMachine> m_machine;
};

} // namespace quorvane
