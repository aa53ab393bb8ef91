#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "platform/Audio.h"
#include "platform/RunLoop.h"
#include "platform/simulated/audio/SimulatedAudioFilePlayer.h"
#include "platform/simulated/audio/SimulatedAudioMachine.h"
#include "platform/simulated/audio/SimulatedAudioVoice.h"

namespace quorvane {

/// Sound on a machine that exists on a run loop's clock only: it is written down when it is due,
/// never heard. Main thread only; the service outlives nothing but its own calls.
class SimulatedAudio final : public AudioService {
public:
    explicit SimulatedAudio(RunLoop& runLoop);
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

    // What there is on the machine. A path that was never named is a missing file.

    /// `samples` are interleaved and whole frames.
    void addFile(const std::filesystem::path& path, const AudioFormat& format,
                 std::vector<float> samples);
    /// A file that says it has `claimedFrames` but holds only `samples`.
    void addTruncatedFile(const std::filesystem::path& path, const AudioFormat& format,
                          std::vector<float> samples, std::int64_t claimedFrames);
    /// A file that is there but holds no sound.
    void addNonAudioFile(const std::filesystem::path& path);

    // What goes wrong.

    /// The fault lasts until `clearFault`; its description reaches the caller where the call has
    /// room for one.
    void setFault(AudioFault fault, std::string description);
    void clearFault(AudioFault fault);
    /// Unplugged: every running engine stops at once, what was scheduled on its nodes is dropped,
    /// no engine starts until the device is there again, and file players fall silent; one that
    /// was to play less than SimulatedAudioFilePlayer::patience ago then plays on. Present from
    /// the start.
    void setOutputDevicePresent(bool present);

    // What was heard.

    /// Every stretch of sound, in the order in which they began.
    [[nodiscard]] const SimulatedTimeline& timeline() const { return *m_timeline; }

    /// The mix from one media time to another, as interleaved samples of `format` (1 or 2
    /// channels), without any filtering. Sound that is still to come is what would come if nothing
    /// more were called.
    [[nodiscard]] std::vector<float> render(double from, double to,
                                            const AudioFormat& format) const;

    /// Number of nodes that were ever created.
    [[nodiscard]] std::size_t nodeCount() const { return m_voices.size(); }

    /// What the node does that was created as number `index`, counted from 0.
    [[nodiscard]] const SimulatedAudioVoice& node(std::size_t index) const {
        return *m_voices.at(index);
    }

    /// Number of file players that were ever created.
    [[nodiscard]] std::size_t filePlayerCount() const { return m_filePlayers.size(); }

    /// The file player that was created as number `index`, counted from 0; also when it is gone.
    [[nodiscard]] const SimulatedAudioFilePlayer& filePlayer(std::size_t index) const {
        return *m_filePlayers.at(index);
    }

    /// Number of holds on the output device that live now.
    [[nodiscard]] std::size_t holdCount() const { return m_machine->holdCount; }

    /// Number of engines that run now.
    [[nodiscard]] std::size_t runningEngineCount() const;
    /// Number of calls of `start` on an engine that was not running, failed ones too.
    [[nodiscard]] std::size_t engineStartCount() const;

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
