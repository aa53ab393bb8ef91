#include "platform/linux/OpenALAudioFilePlayer.h"

#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "platform/linux/OpenALAudioClip.h"
#include "platform/linux/OpenALAudioOutput.h"
#include "platform/linux/SndfileAudioFile.h"

namespace quorvane {

namespace {

constexpr double mostBytes = 256.0 * 1024 * 1024;

std::variant<std::shared_ptr<const PCMBuffer>, AudioError>
decode(AudioFile& file, const std::filesystem::path& path) {
    const AudioFormat format = file.processingFormat();
    const auto frames = static_cast<double>(file.length());
    if (!(frames > 0))
        return AudioError{path.string() + ": there is no sound in it"};
    if (frames * format.channels * sizeof(float) > mostBytes)
        return AudioError{path.string() + ": the sound is too long"};
    auto buffer = std::make_shared<PCMBuffer>();
    buffer->format = format;
    buffer->frameCapacity = static_cast<std::uint32_t>(file.length());
    buffer->samples.resize(std::size_t{buffer->frameCapacity} * format.channels);
    if (auto error = file.read(*buffer))
        return *std::move(error);
    return buffer;
}

} // namespace

std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
OpenALAudioFilePlayer::open(const std::shared_ptr<OpenALAudioOutput>& output,
                            const std::filesystem::path& path) {
    try {
        auto file = SndfileAudioFile::open(path);
        if (auto* error = std::get_if<AudioError>(&file))
            return std::move(*error);
        auto sound = decode(*std::get<std::shared_ptr<AudioFile>>(file), path);
        if (auto* error = std::get_if<AudioError>(&sound))
            return std::move(*error);
        return std::make_shared<OpenALAudioFilePlayer>(
            output, std::make_shared<OpenALAudioClip>(
                        std::get<std::shared_ptr<const PCMBuffer>>(std::move(sound))));
    } catch (const std::bad_alloc&) {
        return AudioError{path.string() + ": there is not enough memory for it"};
    }
}

OpenALAudioFilePlayer::OpenALAudioFilePlayer(std::shared_ptr<OpenALAudioOutput> output,
                                             std::shared_ptr<OpenALAudioClip> clip)
    : m_output(std::move(output)), m_clip(std::move(clip)) {
    m_output->add(m_clip);
}

OpenALAudioFilePlayer::~OpenALAudioFilePlayer() {
    m_output->remove(m_clip);
}

double OpenALAudioFilePlayer::duration() const {
    return m_clip->duration();
}

double OpenALAudioFilePlayer::currentTime() const {
    return m_output->withClips([this] { return m_clip->place(); });
}

void OpenALAudioFilePlayer::setCurrentTime(double seconds) {
    m_output->withClips([&] { m_clip->setPlace(seconds); });
}

float OpenALAudioFilePlayer::volume() const {
    return m_output->withClips([this] { return m_clip->volume(); });
}

void OpenALAudioFilePlayer::setVolume(float volume) {
    m_output->withClips([&] { m_clip->setVolume(volume); });
}

int OpenALAudioFilePlayer::numberOfLoops() const {
    return m_output->withClips([this] { return m_clip->loops(); });
}

void OpenALAudioFilePlayer::setNumberOfLoops(int count) {
    m_output->withClips([&] { m_clip->setLoops(count); });
}

// All that needs no device is done when the file is opened.
bool OpenALAudioFilePlayer::prepareToPlay() {
    return true;
}

bool OpenALAudioFilePlayer::play() {
    return m_output->play(*m_clip);
}

void OpenALAudioFilePlayer::stop() {
    m_output->withClips([this] { m_clip->stop(); });
}

bool OpenALAudioFilePlayer::isPlaying() const {
    return m_output->withClips([this] { return m_clip->isSounding(); });
}

} // namespace quorvane
