#include "platform/linux/audio/OpenALAudioService.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/PCMBuffers.h"
#include "platform/linux/audio/OpenALAudioFilePlayer.h"
#include "platform/linux/audio/OpenALAudioOutput.h"
#include "platform/linux/audio/SndfileAudioFile.h"

namespace quorvane {

namespace {

class OpenALAudioPlayerNode final : public AudioPlayerNode {
public:
    explicit OpenALAudioPlayerNode(std::shared_ptr<OpenALAudioOutput> output)
        : m_output(std::move(output)) {}

    ~OpenALAudioPlayerNode() override { m_output->remove(m_voice); }

    void scheduleBuffer(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                        Completion completion) override {
        m_output->schedule(*m_voice, std::move(buffer), options, std::move(completion));
    }

    void play() override { m_output->play(*m_voice); }

    void pause() override { m_output->pause(*m_voice); }

    void stop() override { m_output->stop(*m_voice); }

    void setVolume(float volume) override {
        m_volume = std::clamp(volume, 0.0F, 1.0F);
        m_output->setVolume(*m_voice, m_volume);
    }

    [[nodiscard]] float volume() const override { return m_volume; }

    [[nodiscard]] const std::shared_ptr<OpenALAudioVoice>& voice() const { return m_voice; }

private:
    std::shared_ptr<OpenALAudioOutput> m_output;
    std::shared_ptr<OpenALAudioVoice> m_voice = std::make_shared<OpenALAudioVoice>();
    float m_volume = 1;
};

class OpenALAudioEngine final : public AudioEngine {
public:
    explicit OpenALAudioEngine(std::shared_ptr<OpenALAudioOutput> output)
        : m_output(std::move(output)) {}

    ~OpenALAudioEngine() override { m_output->removeEngine(this); }

    void attach(const std::shared_ptr<AudioPlayerNode>& node) override {
        m_output->attach(dynamic_cast<OpenALAudioPlayerNode&>(*node).voice(), this);
        m_nodes.push_back(node);
    }

    // OpenAL converts each buffer from the format that it has, so there is nothing to set up.
    void connectToMainMixer(const std::shared_ptr<AudioPlayerNode>&, const AudioFormat&) override {}

    [[nodiscard]] bool isRunning() const override { return m_output->isEngineRunning(this); }

    std::optional<AudioError> start() override { return m_output->startEngine(this); }

    void stop() override { m_output->stopEngine(this); }

private:
    std::shared_ptr<OpenALAudioOutput> m_output;
    // An engine keeps what is attached to it.
    std::vector<std::shared_ptr<AudioPlayerNode>> m_nodes;
};

class OpenALAudioHold final : public AudioOutputHold {
public:
    explicit OpenALAudioHold(std::shared_ptr<OpenALAudioOutput> output)
        : m_output(std::move(output)) {
        m_output->hold();
    }

    ~OpenALAudioHold() override { m_output->release(); }

private:
    std::shared_ptr<OpenALAudioOutput> m_output;
};

} // namespace

OpenALAudioService::OpenALAudioService() : m_output(OpenALAudioOutput::create()) {}

OpenALAudioService::~OpenALAudioService() = default;

std::shared_ptr<AudioEngine> OpenALAudioService::createEngine() {
    return std::make_shared<OpenALAudioEngine>(m_output);
}

std::shared_ptr<AudioPlayerNode> OpenALAudioService::createPlayerNode() {
    return std::make_shared<OpenALAudioPlayerNode>(m_output);
}

std::variant<std::shared_ptr<AudioFile>, AudioError>
OpenALAudioService::openFile(const std::filesystem::path& path) {
    auto file = SndfileAudioFile::open(path);
    if (auto* error = std::get_if<AudioError>(&file))
        return std::move(*error);
    return std::get<std::shared_ptr<SndfileAudioFile>>(std::move(file));
}

std::shared_ptr<PCMBuffer> OpenALAudioService::createBuffer(const AudioFormat& format,
                                                            std::uint32_t frameCapacity) {
    return makePCMBuffer(format, frameCapacity);
}

std::optional<AudioFormat> OpenALAudioService::standardFormat(double sampleRate,
                                                              unsigned channels) {
    return makeStandardFormat(sampleRate, channels);
}

std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
OpenALAudioService::createFilePlayer(const std::filesystem::path& path) {
    return OpenALAudioFilePlayer::open(m_output, path);
}

std::shared_ptr<AudioOutputHold> OpenALAudioService::holdOutput() {
    return std::make_shared<OpenALAudioHold>(m_output);
}

} // namespace quorvane
