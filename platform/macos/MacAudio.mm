#include "platform/macos/MacAudio.h"

#import <AVFAudio/AVFAudio.h>

#include <utility>

#include "platform/PCMBuffers.h"
#include "platform/macos/MacAudioEngine.h"
#include "platform/macos/MacAudioFilePlayer.h"
#include "platform/macos/MacAudioFormat.h"

namespace quorvane {

namespace {

class MacAudioFile final : public AudioFile {
public:
    explicit MacAudioFile(AVAudioFile* file) : m_file(file) {}

    [[nodiscard]] AudioFormat processingFormat() const override {
        return toAudioFormat(m_file.processingFormat);
    }

    [[nodiscard]] std::int64_t length() const override { return m_file.length; }

    std::optional<AudioError> read(PCMBuffer& buffer) override {
        AVAudioPCMBuffer* sound =
            [[AVAudioPCMBuffer alloc] initWithPCMFormat:m_file.processingFormat
                                          frameCapacity:buffer.frameCapacity];
        if (!sound)
            return AudioError{"no memory for the sound"};
        m_file.framePosition = 0;
        buffer.frameLength = 0;
        // One read may return less than is left.
        while (m_file.framePosition < length()) {
            NSError* error = nil;
            if (![m_file readIntoBuffer:sound error:&error])
                return toAudioError(error);
            if (sound.frameLength == 0)
                break;
            append(sound, buffer);
        }
        if (buffer.frameLength < length())
            return AudioError{"the file ends before its length"};
        return std::nullopt;
    }

private:
    AVAudioFile* m_file;
};

} // namespace

std::shared_ptr<AudioEngine> MacAudio::createEngine() {
    return makeMacAudioEngine();
}

std::shared_ptr<AudioPlayerNode> MacAudio::createPlayerNode() {
    return makeMacAudioPlayerNode();
}

std::variant<std::shared_ptr<AudioFile>, AudioError>
MacAudio::openFile(const std::filesystem::path& path) {
    NSError* error = nil;
    AVAudioFile* file = [[AVAudioFile alloc] initForReading:toURL(path) error:&error];
    if (!file)
        return toAudioError(error);
    return std::make_shared<MacAudioFile>(file);
}

std::shared_ptr<PCMBuffer> MacAudio::createBuffer(const AudioFormat& format,
                                                  std::uint32_t frameCapacity) {
    if (!standardFormat(format.sampleRate, format.channels))
        return nullptr;
    return makePCMBuffer(format, frameCapacity);
}

std::optional<AudioFormat> MacAudio::standardFormat(double sampleRate, unsigned channels) {
    // AVFAudio makes a format of any sample rate.
    const auto wanted = makeStandardFormat(sampleRate, channels);
    if (!wanted)
        return std::nullopt;
    AVAudioFormat* format = standardAudioFormat(*wanted);
    if (!format)
        return std::nullopt;
    return toAudioFormat(format);
}

std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
MacAudio::createFilePlayer(const std::filesystem::path& path) {
    return makeMacAudioFilePlayer(path);
}

std::shared_ptr<AudioOutputHold> MacAudio::holdOutput() {
    return makeMacAudioOutputHold();
}

} // namespace quorvane
