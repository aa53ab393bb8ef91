#include "platform/macos/MacAudioFilePlayer.h"

#import <AVFAudio/AVFAudio.h>

#include <algorithm>

#include "platform/macos/MacAudioFormat.h"

namespace quorvane {

namespace {

class MacAudioFilePlayer final : public AudioFilePlayer {
public:
    explicit MacAudioFilePlayer(AVAudioPlayer* player) : m_player(player) {}

    [[nodiscard]] double duration() const override { return m_player.duration; }

    // AVFAudio makes no player for a file that it cannot decode.
    [[nodiscard]] bool hasSound() const override { return true; }

    [[nodiscard]] double currentTime() const override { return m_player.currentTime; }

    void setCurrentTime(double seconds) override {
        m_player.currentTime = std::clamp(seconds, 0.0, m_player.duration);
    }

    [[nodiscard]] float volume() const override { return m_player.volume; }

    void setVolume(float volume) override { m_player.volume = volume; }

    [[nodiscard]] int numberOfLoops() const override {
        return static_cast<int>(m_player.numberOfLoops);
    }

    void setNumberOfLoops(int count) override { m_player.numberOfLoops = count; }

    bool prepareToPlay() override { return [m_player prepareToPlay]; }

    bool play() override { return [m_player play]; }

    void stop() override { [m_player stop]; }

    [[nodiscard]] bool isPlaying() const override { return m_player.playing; }

private:
    AVAudioPlayer* m_player;
};

} // namespace

std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
makeMacAudioFilePlayer(const std::filesystem::path& path) {
    NSError* error = nil;
    AVAudioPlayer* player = [[AVAudioPlayer alloc] initWithContentsOfURL:toURL(path) error:&error];
    if (!player)
        return toAudioError(error);
    return std::make_shared<MacAudioFilePlayer>(player);
}

} // namespace quorvane
