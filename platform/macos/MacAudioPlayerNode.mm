#include "platform/macos/MacAudioPlayerNode.h"

#include <utility>

#include "platform/macos/MacAudioEngine.h"
#include "platform/macos/MacAudioFormat.h"

namespace quorvane {

namespace {

class MacAudioPlayerNode final : public AudioPlayerNode {
public:
    ~MacAudioPlayerNode() override { [m_node.engine detachNode:m_node]; }

    void scheduleBuffer(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                        Completion completion) override {
        AVAudioPCMBuffer* sound = systemBuffer(buffer);
        if (!sound)
            return;
        // Called when the device has been given the last of the sound, which it still plays.
        AVAudioNodeCompletionHandler handler = nil;
        if (completion)
            handler = ^{
              completion();
            };
        [m_node scheduleBuffer:sound
                        atTime:nil
                       options:options == BufferOptions::Loops ? AVAudioPlayerNodeBufferLoops : 0
             completionHandler:handler];
    }

    void play() override {
        // Without a running engine, as after a device is unplugged, the node would raise an
        // exception.
        if (m_node.engine.running)
            [m_node play];
    }

    void pause() override { [m_node pause]; }

    void stop() override { [m_node stop]; }

    void setVolume(float volume) override { m_node.volume = volume; }

    [[nodiscard]] float volume() const override { return m_node.volume; }

    [[nodiscard]] AVAudioPlayerNode* node() const { return m_node; }

private:
    // Cached: copying takes a while, and most plays are of the same buffer.
    AVAudioPCMBuffer* systemBuffer(const std::shared_ptr<const PCMBuffer>& buffer) {
        if (!m_copy || m_copied.lock() != buffer) {
            m_copy = deinterleaved(*buffer);
            m_copied = buffer;
        }
        return m_copy;
    }

    AVAudioPlayerNode* m_node = [[AVAudioPlayerNode alloc] init];
    std::weak_ptr<const PCMBuffer> m_copied;
    AVAudioPCMBuffer* m_copy = nil;
};

} // namespace

AVAudioPlayerNode* playerNodeOf(AudioPlayerNode& node) {
    return dynamic_cast<MacAudioPlayerNode&>(node).node();
}

std::shared_ptr<AudioPlayerNode> makeMacAudioPlayerNode() {
    return std::make_shared<MacAudioPlayerNode>();
}

} // namespace quorvane
