#include "platform/simulated/SimulatedAudio.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace quorvane {

namespace {

class SimulatedPlayerNode final : public AudioPlayerNode {
public:
    explicit SimulatedPlayerNode(std::shared_ptr<SimulatedAudioVoice> voice)
        : m_voice(std::move(voice)) {}

    SimulatedPlayerNode(const SimulatedPlayerNode&) = delete;
    SimulatedPlayerNode& operator=(const SimulatedPlayerNode&) = delete;

    ~SimulatedPlayerNode() override { m_voice->drop(); }

    void scheduleBuffer(std::shared_ptr<const PCMBuffer> buffer, BufferOptions /*options*/,
                        Completion completion) override {
        m_voice->schedule(std::move(buffer), std::move(completion));
    }

    void play() override { m_voice->play(); }

    void pause() override { m_voice->pause(); }

    void stop() override { m_voice->stop(); }

    void setVolume(float volume) override { m_volume = volume; }

    [[nodiscard]] float volume() const override { return m_volume; }

    [[nodiscard]] SimulatedAudioVoice& voice() { return *m_voice; }

private:
    std::shared_ptr<SimulatedAudioVoice> m_voice;
    float m_volume = 1;
};

SimulatedAudioVoice& voiceOf(AudioPlayerNode& node) {
    return dynamic_cast<SimulatedPlayerNode&>(node).voice();
}

/// The sample of `sound` that is heard at media time `time`, times its share in `channel`.
float sampleAt(const SimulatedSound& sound, double time, unsigned channel, unsigned channels) {
    const PCMBuffer& buffer = *sound.buffer;
    // A little room, since times are whole nanoseconds and frames are not.
    const double frame =
        std::floor((sound.offset + time - sound.startTime) * buffer.format.sampleRate + 1e-3);
    if (time < sound.startTime || time >= sound.stopTime || frame >= buffer.frameLength)
        return 0;
    const auto* samples = &buffer.samples[static_cast<std::size_t>(frame) * buffer.format.channels];
    if (channels == 1 && buffer.format.channels == 2)
        return (samples[0] + samples[1]) / 2;
    return samples[std::min(channel, buffer.format.channels - 1)];
}

} // namespace

struct SimulatedAudio::Recording {
    AudioFormat format;
    std::vector<float> samples;
    std::int64_t claimedFrames = 0;
    bool isAudio = true;
};

struct SimulatedAudio::Machine {
    std::map<AudioFault, std::string> faults;
    bool outputDevicePresent = true;
    std::vector<std::weak_ptr<Engine>> engines;
    std::size_t engineStartCount = 0;

    [[nodiscard]] std::optional<AudioError> fault(AudioFault fault) const {
        const auto found = faults.find(fault);
        if (found == faults.end())
            return std::nullopt;
        return AudioError{found->second};
    }
};

class SimulatedAudio::Engine final : public AudioEngine {
public:
    explicit Engine(std::shared_ptr<Machine> machine) : m_machine(std::move(machine)) {}

    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    ~Engine() override { halt(); }

    void attach(const std::shared_ptr<AudioPlayerNode>& node) override {
        voiceOf(*node).attach();
        m_nodes.push_back(node);
        if (m_running)
            voiceOf(*node).engineStarted();
    }

    void connectToMainMixer(const std::shared_ptr<AudioPlayerNode>& node,
                            const AudioFormat& format) override {
        voiceOf(*node).connect(format);
    }

    [[nodiscard]] bool isRunning() const override { return m_running; }

    std::optional<AudioError> start() override {
        if (m_running)
            return std::nullopt;
        ++m_machine->engineStartCount;
        if (auto error = m_machine->fault(AudioFault::EngineStart))
            return error;
        if (!m_machine->outputDevicePresent)
            return AudioError{"There is no sound output device."};
        m_running = true;
        for (const auto& node : m_nodes)
            voiceOf(*node).engineStarted();
        return std::nullopt;
    }

    void stop() override { halt(); }

    void halt() {
        if (!std::exchange(m_running, false))
            return;
        for (const auto& node : m_nodes)
            voiceOf(*node).engineStopped();
    }

private:
    std::shared_ptr<Machine> m_machine;
    std::vector<std::shared_ptr<AudioPlayerNode>> m_nodes;
    bool m_running = false;
};

class SimulatedAudio::File final : public AudioFile {
public:
    File(std::shared_ptr<const Machine> machine, Recording recording)
        : m_machine(std::move(machine)), m_recording(std::move(recording)) {}

    [[nodiscard]] AudioFormat processingFormat() const override { return m_recording.format; }

    [[nodiscard]] std::int64_t length() const override { return m_recording.claimedFrames; }

    std::optional<AudioError> read(PCMBuffer& buffer) override {
        if (auto error = m_machine->fault(AudioFault::FileRead))
            return error;
        const std::size_t values = std::min(m_recording.samples.size(), buffer.samples.size());
        std::copy_n(m_recording.samples.begin(), values, buffer.samples.begin());
        buffer.frameLength = static_cast<std::uint32_t>(values / buffer.format.channels);
        if (buffer.frameLength < m_recording.claimedFrames)
            return AudioError{"The sound file ends before its length."};
        return std::nullopt;
    }

private:
    std::shared_ptr<const Machine> m_machine;
    Recording m_recording;
};

SimulatedAudio::SimulatedAudio(RunLoop& runLoop)
    : m_runLoop(runLoop), m_timeline(std::make_shared<std::vector<SimulatedSound>>()),
      m_machine(std::make_shared<Machine>()) {}

SimulatedAudio::~SimulatedAudio() = default;

std::shared_ptr<AudioEngine> SimulatedAudio::createEngine() {
    auto engine = std::make_shared<Engine>(m_machine);
    m_machine->engines.push_back(engine);
    return engine;
}

std::shared_ptr<AudioPlayerNode> SimulatedAudio::createPlayerNode() {
    auto voice = std::make_shared<SimulatedAudioVoice>(m_runLoop, m_timeline, m_voices.size());
    m_voices.push_back(voice);
    return std::make_shared<SimulatedPlayerNode>(std::move(voice));
}

std::variant<std::shared_ptr<AudioFile>, AudioError>
SimulatedAudio::openFile(const std::filesystem::path& path) {
    if (auto error = m_machine->fault(AudioFault::FileOpen))
        return *std::move(error);
    const auto found = m_files.find(path);
    if (found == m_files.end())
        return AudioError{path.string() + ": No such file or directory"};
    if (!found->second.isAudio)
        return AudioError{path.string() + ": not a sound file that can be decoded"};
    return std::make_shared<File>(m_machine, found->second);
}

std::shared_ptr<PCMBuffer> SimulatedAudio::createBuffer(const AudioFormat& format,
                                                        std::uint32_t frameCapacity) {
    if (m_machine->fault(AudioFault::BufferCreation) || format.channels == 0 ||
        !(format.sampleRate > 0))
        return nullptr;
    auto buffer = std::make_shared<PCMBuffer>();
    buffer->format = format;
    buffer->frameCapacity = frameCapacity;
    buffer->samples.resize(std::size_t{frameCapacity} * format.channels);
    return buffer;
}

std::optional<AudioFormat> SimulatedAudio::standardFormat(double sampleRate, unsigned channels) {
    if (!std::isfinite(sampleRate) || sampleRate <= 0 || channels < 1 || channels > 2)
        return std::nullopt;
    return AudioFormat{.sampleRate = sampleRate, .channels = channels};
}

std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
SimulatedAudio::createFilePlayer(const std::filesystem::path& path) {
    return AudioError{path.string() + ": there are no file players yet"};
}

std::shared_ptr<AudioOutputHold> SimulatedAudio::holdOutput() {
    return std::make_shared<AudioOutputHold>();
}

void SimulatedAudio::addFile(const std::filesystem::path& path, const AudioFormat& format,
                             std::vector<float> samples) {
    const auto frames = static_cast<std::int64_t>(samples.size() / format.channels);
    addTruncatedFile(path, format, std::move(samples), frames);
}

void SimulatedAudio::addTruncatedFile(const std::filesystem::path& path, const AudioFormat& format,
                                      std::vector<float> samples, std::int64_t claimedFrames) {
    m_files[path] = {
        .format = format, .samples = std::move(samples), .claimedFrames = claimedFrames};
}

void SimulatedAudio::addNonAudioFile(const std::filesystem::path& path) {
    m_files[path] = {.format = {}, .samples = {}, .isAudio = false};
}

void SimulatedAudio::setFault(AudioFault fault, std::string description) {
    m_machine->faults[fault] = std::move(description);
}

void SimulatedAudio::clearFault(AudioFault fault) {
    m_machine->faults.erase(fault);
}

void SimulatedAudio::setOutputDevicePresent(bool present) {
    m_machine->outputDevicePresent = present;
    if (present)
        return;
    for (const auto& weak : m_machine->engines)
        if (const auto engine = weak.lock())
            engine->halt();
}

std::vector<float> SimulatedAudio::render(double from, double to, const AudioFormat& format) const {
    const auto frames = static_cast<std::size_t>(std::llround((to - from) * format.sampleRate));
    std::vector<float> mix(frames * format.channels);
    for (const SimulatedSound& sound : *m_timeline)
        for (std::size_t i = 0; i < mix.size(); ++i) {
            const std::size_t frame = i / format.channels;
            const auto channel = static_cast<unsigned>(i % format.channels);
            mix[i] += sampleAt(sound, from + static_cast<double>(frame) / format.sampleRate,
                               channel, format.channels);
        }
    return mix;
}

std::size_t SimulatedAudio::runningEngineCount() const {
    return static_cast<std::size_t>(
        std::count_if(m_machine->engines.begin(), m_machine->engines.end(), [](const auto& weak) {
            const auto engine = weak.lock();
            return engine && engine->isRunning();
        }));
}

std::size_t SimulatedAudio::engineStartCount() const {
    return m_machine->engineStartCount;
}

} // namespace quorvane
