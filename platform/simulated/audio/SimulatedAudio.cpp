#include "platform/simulated/audio/SimulatedAudio.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "platform/PCMBuffers.h"
#include "platform/simulated/audio/SimulatedAudioEngine.h"

namespace quorvane {

namespace {

/// The sound file at `path`, or an error.
std::variant<const SimulatedRecording*, AudioError>
recordingIn(const SimulatedAudioMachine& machine, const std::filesystem::path& path) {
    const auto found = machine.files.find(path);
    if (found == machine.files.end())
        return AudioError{path.string() + ": No such file or directory"};
    if (!found->second.isAudio)
        return AudioError{path.string() + ": not a sound file that can be decoded"};
    return &found->second;
}

} // namespace

class SimulatedAudio::File final : public AudioFile {
public:
    File(std::shared_ptr<const SimulatedAudioMachine> machine, SimulatedRecording recording)
        : m_machine(std::move(machine)), m_recording(std::move(recording)) {}

    [[nodiscard]] AudioFormat processingFormat() const override { return m_recording.format; }

    [[nodiscard]] std::int64_t length() const override { return m_recording.claimedFrames; }

    std::optional<AudioError> read(PCMBuffer& buffer) override {
        if (auto error = m_machine->error(Fault::FileRead))
            return error;
        if (m_recording.isDamaged)
            return AudioError{"The sound file is damaged."};
        const std::size_t values = std::min(m_recording.samples.size(), buffer.samples.size());
        std::copy_n(m_recording.samples.begin(), values, buffer.samples.begin());
        buffer.frameLength = static_cast<std::uint32_t>(values / buffer.format.channels);
        if (buffer.frameLength < m_recording.claimedFrames)
            return AudioError{"The sound file ends before its length."};
        return std::nullopt;
    }

private:
    std::shared_ptr<const SimulatedAudioMachine> m_machine;
    SimulatedRecording m_recording;
};

class SimulatedAudio::Hold final : public AudioOutputHold {
public:
    explicit Hold(std::shared_ptr<SimulatedAudioMachine> machine) : m_machine(std::move(machine)) {
        ++m_machine->holdCount;
    }

    ~Hold() override { --m_machine->holdCount; }

private:
    std::shared_ptr<SimulatedAudioMachine> m_machine;
};

SimulatedAudio::SimulatedAudio(RunLoop& runLoop, std::shared_ptr<Faults> faults)
    : m_runLoop(runLoop), m_timeline(std::make_shared<SimulatedTimeline>()),
      m_machine(std::make_shared<SimulatedAudioMachine>()) {
    m_machine->faults = std::move(faults);
}

SimulatedAudio::~SimulatedAudio() = default;

std::shared_ptr<AudioEngine> SimulatedAudio::createEngine() {
    auto engine = std::make_shared<SimulatedAudioEngine>(m_machine);
    m_machine->engines.push_back(engine);
    return engine;
}

std::shared_ptr<AudioPlayerNode> SimulatedAudio::createPlayerNode() {
    auto voice = std::make_shared<SimulatedAudioVoice>(m_runLoop, m_timeline);
    m_voices.push_back(voice);
    return std::make_shared<SimulatedPlayerNode>(std::move(voice));
}

std::variant<std::shared_ptr<AudioFile>, AudioError>
SimulatedAudio::openFile(const std::filesystem::path& path) {
    if (auto error = m_machine->error(Fault::FileOpen))
        return *std::move(error);
    const auto found = recordingIn(*m_machine, path);
    if (const auto* error = std::get_if<AudioError>(&found))
        return *error;
    return std::make_shared<File>(m_machine, *std::get<const SimulatedRecording*>(found));
}

std::shared_ptr<PCMBuffer> SimulatedAudio::createBuffer(const AudioFormat& format,
                                                        std::uint32_t frameCapacity) {
    if (m_machine->faults->fails(Fault::BufferCreation))
        return nullptr;
    auto buffer = makePCMBuffer(format, frameCapacity);
    if (buffer && m_machine->faults->fails(Fault::BufferSamples))
        buffer->samples.clear();
    return buffer;
}

std::optional<AudioFormat> SimulatedAudio::standardFormat(double sampleRate, unsigned channels) {
    if (m_machine->faults->fails(Fault::StandardFormat))
        return std::nullopt;
    return makeStandardFormat(sampleRate, channels);
}

std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
SimulatedAudio::createFilePlayer(const std::filesystem::path& path) {
    if (auto error = m_machine->error(Fault::FilePlayerCreation))
        return *std::move(error);
    const auto found = recordingIn(*m_machine, path);
    if (const auto* error = std::get_if<AudioError>(&found))
        return *error;
    const SimulatedRecording& recording = *std::get<const SimulatedRecording*>(found);
    if (recording.samples.empty())
        return AudioError{path.string() + ": there is no sound in it"};
    if (recording.samples.size() <
        static_cast<std::size_t>(recording.claimedFrames) * recording.format.channels)
        return AudioError{path.string() + ": the sound ends before its length"};
    const auto player =
        std::make_shared<SimulatedAudioFilePlayer>(m_runLoop, m_timeline, m_machine, path);
    m_filePlayers.push_back(player);
    return std::shared_ptr<AudioFilePlayer>(
        player.get(), [player](AudioFilePlayer* /*owned by the capture*/) { player->release(); });
}

std::shared_ptr<AudioOutputHold> SimulatedAudio::holdOutput() {
    return std::make_shared<Hold>(m_machine);
}

void SimulatedAudio::addFile(const std::filesystem::path& path, const AudioFormat& format,
                             std::vector<float> samples) {
    const auto frames = static_cast<std::int64_t>(samples.size() / format.channels);
    addTruncatedFile(path, format, std::move(samples), frames);
}

void SimulatedAudio::addTruncatedFile(const std::filesystem::path& path, const AudioFormat& format,
                                      std::vector<float> samples, std::int64_t claimedFrames) {
    m_machine->files[path] = {
        .format = format, .samples = std::move(samples), .claimedFrames = claimedFrames};
}

void SimulatedAudio::addDamagedFile(const std::filesystem::path& path, const AudioFormat& format,
                                    std::vector<float> samples) {
    addFile(path, format, std::move(samples));
    m_machine->files.at(path).isDamaged = true;
}

void SimulatedAudio::addNonAudioFile(const std::filesystem::path& path) {
    m_machine->files[path] = {.format = {}, .samples = {}, .isAudio = false};
}

void SimulatedAudio::setOutputDevicePresent(bool present) {
    m_machine->outputDevicePresent = present;
    for (const auto& player : m_filePlayers)
        if (present)
            player->deviceCame();
        else
            player->deviceWent();
    if (present)
        return;
    for (const auto& weak : m_machine->engines)
        if (const auto engine = weak.lock())
            engine->halt();
}

void SimulatedAudio::forget() {
    const bool sounds =
        std::any_of(m_voices.begin(), m_voices.end(),
                    [](const auto& voice) {
                        return voice->state() == SimulatedAudioVoice::State::Sounding;
                    }) ||
        std::any_of(m_filePlayers.begin(), m_filePlayers.end(),
                    [](const auto& player) { return player->isPlaying(); });
    if (sounds)
        return;
    m_timeline->clear();
    for (const auto& voice : m_voices)
        voice->forgetCalls();
    for (const auto& player : m_filePlayers)
        player->forgetCalls();
}

std::vector<float> SimulatedAudio::render(double from, double to, const AudioFormat& format) const {
    const auto frames = static_cast<std::size_t>(std::llround((to - from) * format.sampleRate));
    std::vector<float> mix(frames * format.channels);
    for (const SimulatedSound& sound : *m_timeline)
        for (std::size_t i = 0; i < mix.size(); ++i) {
            const std::size_t frame = i / format.channels;
            const auto channel = static_cast<unsigned>(i % format.channels);
            mix[i] += sound.sampleAt(from + static_cast<double>(frame) / format.sampleRate, channel,
                                     format.channels);
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
