#include "platform/linux/audio/OpenALAudioFilePlayer.h"

#include <cstdint>
#include <string>
#include <utility>

#include "platform/PCMBuffers.h"
#include "platform/linux/audio/OpenALAudioClip.h"
#include "platform/linux/audio/OpenALAudioOutput.h"
#include "platform/linux/audio/SndfileAudioFile.h"

namespace quorvane {

namespace {

constexpr double mostBytes = 256.0 * 1024 * 1024;
// Seconds of sound that are decoded in less than a millisecond. What is longer waits for its first
// use: until then its memory would be held for nothing.
constexpr double longestAhead = 1;

std::optional<AudioError> unplayable(SndfileAudioFile& file, const std::filesystem::path& path) {
    const auto frames = static_cast<double>(file.length());
    if (!(frames > 0))
        return AudioError{path.string() + ": there is no sound in it"};
    if (frames * file.processingFormat().channels * sizeof(float) > mostBytes)
        return AudioError{path.string() + ": the sound is too long"};
    return file.findEnd();
}

// Null if it cannot be decoded to its end, or there is not enough memory.
std::shared_ptr<const PCMBuffer> decode(AudioFile& file) {
    auto buffer = makePCMBuffer(file.processingFormat(), static_cast<std::uint32_t>(file.length()));
    return buffer && !file.read(*buffer) ? buffer : nullptr;
}

} // namespace

std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
OpenALAudioFilePlayer::open(const std::shared_ptr<OpenALAudioOutput>& output,
                            const std::filesystem::path& path) {
    auto opened = SndfileAudioFile::open(path);
    if (auto* error = std::get_if<AudioError>(&opened))
        return std::move(*error);
    auto file = std::get<std::shared_ptr<SndfileAudioFile>>(std::move(opened));
    if (auto error = unplayable(*file, path))
        return *std::move(error);
    return std::make_shared<OpenALAudioFilePlayer>(output, std::move(file));
}

OpenALAudioFilePlayer::OpenALAudioFilePlayer(std::shared_ptr<OpenALAudioOutput> output,
                                             std::shared_ptr<AudioFile> file)
    : m_output(std::move(output)), m_file(std::move(file)),
      m_clip(std::make_shared<OpenALAudioClip>(m_file->processingFormat(),
                                               static_cast<std::uint32_t>(m_file->length()))) {
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

bool OpenALAudioFilePlayer::prepareToPlay() {
    return m_clip->duration() > longestAhead || load();
}

bool OpenALAudioFilePlayer::play() {
    return load() && m_output->play(*m_clip);
}

// Decodes outside the output's lock, which its thread needs meanwhile.
bool OpenALAudioFilePlayer::load() {
    if (!m_file)
        return m_clip->hasSound();
    auto sound = decode(*m_file);
    m_file.reset();
    m_output->withClips([&] { m_clip->setSound(std::move(sound)); });
    return m_clip->hasSound();
}

void OpenALAudioFilePlayer::stop() {
    m_output->withClips([this] { m_clip->stop(); });
}

bool OpenALAudioFilePlayer::isPlaying() const {
    return m_output->withClips([this] { return m_clip->isSounding(); });
}

} // namespace quorvane
