#pragma once

#include <memory>
#include <vector>

#include "platform/Audio.h"
#include "platform/simulated/audio/SimulatedAudioMachine.h"
#include "platform/simulated/audio/SimulatedAudioVoice.h"

namespace quorvane {

/// A node whose sounds are recorded by its voice. Main thread only.
class SimulatedPlayerNode final : public AudioPlayerNode {
public:
    explicit SimulatedPlayerNode(std::shared_ptr<SimulatedAudioVoice> voice);
    ~SimulatedPlayerNode() override;

    void scheduleBuffer(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                        Completion completion) override;

    void play() override { m_voice->play(); }

    void pause() override { m_voice->pause(); }

    void stop() override { m_voice->stop(); }

    void setVolume(float volume) override { m_voice->setVolume(volume); }

    [[nodiscard]] float volume() const override { return m_voice->volume(); }

    [[nodiscard]] SimulatedAudioVoice& voice() { return *m_voice; }

private:
    std::shared_ptr<SimulatedAudioVoice> m_voice;
};

/// An engine on the simulated output device. Main thread only.
class SimulatedAudioEngine final : public AudioEngine {
public:
    explicit SimulatedAudioEngine(std::shared_ptr<SimulatedAudioMachine> machine);
    ~SimulatedAudioEngine() override;

    void attach(const std::shared_ptr<AudioPlayerNode>& node) override;
    void connectToMainMixer(const std::shared_ptr<AudioPlayerNode>& node,
                            const AudioFormat& format) override;

    [[nodiscard]] bool isRunning() const override { return m_running; }

    std::optional<AudioError> start() override;

    void stop() override;

    /// Stops, for the loss of the device and the destructor.
    void halt();

private:
    std::shared_ptr<SimulatedAudioMachine> m_machine;
    std::vector<std::shared_ptr<AudioPlayerNode>> m_nodes;
    bool m_running = false;
};

} // namespace quorvane
