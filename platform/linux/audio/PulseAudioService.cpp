#include "platform/linux/audio/PulseAudioService.h"

#include <utility>
#include <vector>

#include "platform/PCMBuffers.h"
#include "platform/linux/audio/AudioOutput.h"
#include "platform/linux/audio/SndfileAudioFile.h"
#include "platform/linux/audio/SoundFilePlayer.h"
#include "platform/linux/audio/TrackPlayerNode.h"

namespace quorvane {

namespace {

class Engine final : public AudioEngine {
public:
    explicit Engine(std::shared_ptr<AudioOutput> output) : m_output(std::move(output)) {}

    ~Engine() override {
        m_output->stopEngine(this);
        for (const auto& node : m_nodes)
            node->attachTo(nullptr);
    }

    void attach(const std::shared_ptr<AudioPlayerNode>& node) override {
        m_nodes.push_back(std::dynamic_pointer_cast<TrackPlayerNode>(node));
        m_nodes.back()->attachTo(this);
    }

    // A node takes buffers of any format, so there is nothing to set up.
    void connectToMainMixer(const std::shared_ptr<AudioPlayerNode>&, const AudioFormat&) override {}

    [[nodiscard]] bool isRunning() const override { return m_output->isRunning(this); }

    std::optional<AudioError> start() override { return m_output->startEngine(this); }

    void stop() override { m_output->stopEngine(this); }

private:
    std::shared_ptr<AudioOutput> m_output;
    // An engine keeps what is attached to it.
    std::vector<std::shared_ptr<TrackPlayerNode>> m_nodes;
};

class Hold final : public AudioOutputHold {
public:
    explicit Hold(std::shared_ptr<AudioOutput> output) : m_output(std::move(output)) {
        m_output->hold();
    }

    ~Hold() override { m_output->release(); }

private:
    std::shared_ptr<AudioOutput> m_output;
};

} // namespace

PulseAudioService::PulseAudioService() : m_output(AudioOutput::create()) {}

PulseAudioService::~PulseAudioService() = default;

std::shared_ptr<AudioEngine> PulseAudioService::createEngine() {
    return std::make_shared<Engine>(m_output);
}

std::shared_ptr<AudioPlayerNode> PulseAudioService::createPlayerNode() {
    return std::make_shared<TrackPlayerNode>(m_output);
}

std::variant<std::shared_ptr<AudioFile>, AudioError>
PulseAudioService::openFile(const std::filesystem::path& path) {
    auto file = SndfileAudioFile::open(path);
    if (auto* error = std::get_if<AudioError>(&file))
        return std::move(*error);
    return std::get<std::shared_ptr<SndfileAudioFile>>(std::move(file));
}

std::shared_ptr<PCMBuffer> PulseAudioService::createBuffer(const AudioFormat& format,
                                                           std::uint32_t frameCapacity) {
    return makePCMBuffer(format, frameCapacity);
}

std::optional<AudioFormat> PulseAudioService::standardFormat(double sampleRate, unsigned channels) {
    return makeStandardFormat(sampleRate, channels);
}

std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
PulseAudioService::createFilePlayer(const std::filesystem::path& path) {
    return SoundFilePlayer::open(m_output, path);
}

std::shared_ptr<AudioOutputHold> PulseAudioService::holdOutput() {
    return std::make_shared<Hold>(m_output);
}

} // namespace quorvane
