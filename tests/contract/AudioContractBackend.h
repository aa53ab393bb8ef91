#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/Audio.h"

namespace quorvane {

/// One implementation of sound, as the contract's cases need it: a service, a way to let time pass,
/// and a hand on the output device and on the files.
class AudioContractBackend : NonCopyable {
public:
    virtual ~AudioContractBackend() = default;

    virtual AudioService& service() = 0;
    virtual void pass(double seconds) = 0;
    /// Seconds on the clock that `pass` moves.
    [[nodiscard]] virtual double now() const = 0;
    /// How much later than promised something may happen, in seconds.
    [[nodiscard]] virtual double tolerance() const = 0;

    /// There from the start; taking it away while it is in use is a loss.
    virtual void setOutputDevicePresent(bool present) = 0;

    /// A stereo file at 44.1 kHz of `goodFileFrames` frames.
    [[nodiscard]] virtual std::filesystem::path goodFile() const = 0;
    static constexpr int goodFileFrames = 44100;
    /// The good file without its second half.
    [[nodiscard]] virtual std::filesystem::path truncatedFile() const = 0;
    [[nodiscard]] virtual std::filesystem::path nonAudioFile() const = 0;
    [[nodiscard]] virtual std::filesystem::path missingFile() const = 0;
    /// The sound of `clip`, to the precision of 16 bits.
    [[nodiscard]] virtual std::filesystem::path clipFile() const = 0;
    /// Half a second of a chirp at 44.1 kHz in stereo.
    [[nodiscard]] static PCMBuffer clip();

    /// What the output device plays from now on is written down.
    virtual void startRecording() = 0;
    /// Interleaved stereo at 44.1 kHz; ends the recording.
    [[nodiscard]] virtual std::vector<float> finishRecording() = 0;
};

std::unique_ptr<AudioContractBackend> makeSimulatedAudioBackend();
std::unique_ptr<AudioContractBackend> makeLinuxAudioBackend();
/// With a long buffer that a busy machine does not run dry: for what sounds, not when.
std::unique_ptr<AudioContractBackend> makeSteadyLinuxAudioBackend();

} // namespace quorvane
