#include "platform/simulated/audio/SimulatedAudioEngine.h"

#include <utility>

namespace quorvane {

namespace {

SimulatedAudioVoice& voiceOf(AudioPlayerNode& node) {
    return dynamic_cast<SimulatedPlayerNode&>(node).voice();
}

} // namespace

SimulatedPlayerNode::SimulatedPlayerNode(std::shared_ptr<SimulatedAudioVoice> voice)
    : m_voice(std::move(voice)) {}

SimulatedPlayerNode::~SimulatedPlayerNode() {
    m_voice->drop();
}

void SimulatedPlayerNode::scheduleBuffer(std::shared_ptr<const PCMBuffer> buffer,
                                         BufferOptions options, Completion completion) {
    m_voice->schedule(std::move(buffer), options, std::move(completion));
}

SimulatedAudioEngine::SimulatedAudioEngine(std::shared_ptr<SimulatedAudioMachine> machine)
    : m_machine(std::move(machine)) {}

SimulatedAudioEngine::~SimulatedAudioEngine() {
    halt();
}

void SimulatedAudioEngine::attach(const std::shared_ptr<AudioPlayerNode>& node) {
    voiceOf(*node).attach();
    m_nodes.push_back(node);
    if (m_running)
        voiceOf(*node).engineStarted();
}

void SimulatedAudioEngine::connectToMainMixer(const std::shared_ptr<AudioPlayerNode>& node,
                                              const AudioFormat& format) {
    voiceOf(*node).connect(format);
}

std::optional<AudioError> SimulatedAudioEngine::start() {
    if (m_running)
        return std::nullopt;
    ++m_machine->engineStartCount;
    if (auto error = m_machine->error(Fault::EngineStart))
        return error;
    if (!m_machine->outputDevicePresent)
        return AudioError{"There is no sound output device."};
    m_running = true;
    for (const auto& node : m_nodes)
        voiceOf(*node).engineStarted();
    return std::nullopt;
}

void SimulatedAudioEngine::stop() {
    ++m_machine->engineStopCount;
    halt();
}

void SimulatedAudioEngine::halt() {
    if (!std::exchange(m_running, false))
        return;
    for (const auto& node : m_nodes)
        voiceOf(*node).engineStopped();
}

} // namespace quorvane
