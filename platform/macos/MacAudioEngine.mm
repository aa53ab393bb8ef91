#include "platform/macos/MacAudioEngine.h"
#include "base/NonCopyable.h"

#import <AVFAudio/AVFAudio.h>

#include <cstdio>
#include <utility>

#include "platform/macos/MacAudioFormat.h"
#include "platform/macos/MacAudioPlayerNode.h"

namespace quorvane {

namespace {

std::string reason(NSException* exception) {
    return toString(exception.reason ? exception.reason : exception.name);
}

// The engine raises an exception, instead of returning an error, when there is no output device or
// one without channels.
std::optional<AudioError> startEngine(AVAudioEngine* engine) {
    @try {
        // Asking for the mixer connects the engine's output.
        [[maybe_unused]] AVAudioMixerNode* mixer = engine.mainMixerNode;
        NSError* error = nil;
        if ([engine startAndReturnError:&error])
            return std::nullopt;
        return toAudioError(error);
    } @catch (NSException* exception) {
        return AudioError{reason(exception)};
    }
}

using Action = void (^)();

/// Runs an action on the main thread when an engine's output device has changed, which stops the
/// engine.
class ConfigurationObserver : NonCopyable {
public:
    ConfigurationObserver(AVAudioEngine* engine, Action action)
        : m_token([NSNotificationCenter.defaultCenter
              addObserverForName:AVAudioEngineConfigurationChangeNotification
                          object:engine
                           queue:NSOperationQueue.mainQueue
                      usingBlock:^(NSNotification*) {
                        action();
                      }]) {}

    ~ConfigurationObserver() { [NSNotificationCenter.defaultCenter removeObserver:m_token]; }

private:
    id<NSObject> m_token;
};

class MacAudioEngine final : public AudioEngine {
public:
    MacAudioEngine() : m_observer(m_engine, makeStopper()) {}

    ~MacAudioEngine() override { [m_engine stop]; }

    void attach(const std::shared_ptr<AudioPlayerNode>& node) override {
        [m_engine attachNode:playerNodeOf(*node)];
    }

    void connectToMainMixer(const std::shared_ptr<AudioPlayerNode>& node,
                            const AudioFormat& format) override {
        @try {
            [m_engine connect:playerNodeOf(*node)
                           to:m_engine.mainMixerNode
                       format:standardAudioFormat(format)];
        } @catch (NSException* exception) {
            // Without an output the node stays unconnected, and starting will fail.
            std::fprintf(stderr, "quorvane: the sound cannot be connected: %s\n",
                         reason(exception).c_str());
        }
    }

    [[nodiscard]] bool isRunning() const override { return m_engine.running; }

    std::optional<AudioError> start() override { return startEngine(m_engine); }

    void stop() override { [m_engine stop]; }

private:
    // Drops what was scheduled for the old device, so that its completion is called.
    [[nodiscard]] Action makeStopper() {
        __weak AVAudioEngine* weakEngine = m_engine;
        return ^{
          for (AVAudioNode* node in weakEngine.attachedNodes)
              if ([node isKindOfClass:[AVAudioPlayerNode class]])
                  [static_cast<AVAudioPlayerNode*>(node) stop];
        };
    }

    AVAudioEngine* m_engine = [[AVAudioEngine alloc] init];
    ConfigurationObserver m_observer;
};

/// An engine that plays nothing, which is enough to keep the device running.
class MacAudioOutputHold final : public AudioOutputHold {
public:
    MacAudioOutputHold() : m_observer(m_engine, makeStarter()) {
        static_cast<void>(startEngine(m_engine));
    }

    ~MacAudioOutputHold() override { [m_engine stop]; }

private:
    [[nodiscard]] Action makeStarter() {
        __weak AVAudioEngine* weakEngine = m_engine;
        return ^{
          if (AVAudioEngine* engine = weakEngine)
              static_cast<void>(startEngine(engine));
        };
    }

    AVAudioEngine* m_engine = [[AVAudioEngine alloc] init];
    ConfigurationObserver m_observer;
};

} // namespace

std::shared_ptr<AudioEngine> makeMacAudioEngine() {
    return std::make_shared<MacAudioEngine>();
}

std::shared_ptr<AudioOutputHold> makeMacAudioOutputHold() {
    return std::make_shared<MacAudioOutputHold>();
}

} // namespace quorvane
