#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "platform/Audio.h"
#include "tests/contract/Contract.h"

namespace quorvane {

/// An implementation of sound whose clock, output device and files the test controls.
class AudioBackend : public ContractBackend {
public:
    virtual AudioService& service() = 0;
    virtual void pass(double seconds) = 0;
    /// Seconds on the clock that `pass` moves.
    [[nodiscard]] virtual double now() const = 0;
    /// How much later than promised something may happen, in seconds.
    [[nodiscard]] virtual double tolerance() const = 0;

    /// There is one at the start. Removed while in use, it counts as lost.
    virtual void setOutputDevicePresent(bool present) = 0;

    /// A stereo file at 44.1 kHz of `goodFileFrames` frames.
    [[nodiscard]] virtual std::filesystem::path goodFile() const = 0;
    static constexpr int goodFileFrames = 44100;
    /// The good file without its second half.
    [[nodiscard]] virtual std::filesystem::path truncatedFile() const = 0;
    /// The sound of `clip`, stored without loss, and damaged in its middle.
    [[nodiscard]] virtual std::filesystem::path damagedFile() const = 0;
    [[nodiscard]] virtual std::filesystem::path nonAudioFile() const = 0;
    [[nodiscard]] virtual std::filesystem::path missingFile() const = 0;
    /// The sound of `clip`, stored in 16 bits.
    [[nodiscard]] virtual std::filesystem::path clipFile() const = 0;
    /// Half a second of a chirp at 44.1 kHz in stereo.
    [[nodiscard]] static PCMBuffer clip();

    /// Records what the output device plays from now on.
    virtual void startRecording() = 0;
    /// Interleaved stereo at 44.1 kHz; ends the recording.
    [[nodiscard]] virtual std::vector<float> finishRecording() = 0;
};

std::unique_ptr<AudioBackend> makeSimulatedAudioBackend();
std::unique_ptr<AudioBackend> makePulseAudioBackend();
std::unique_ptr<AudioBackend> makePipeWireBackend();

} // namespace quorvane
