#pragma once

#include "platform/Audio.h"

namespace quorvane {

/// See AudioService for what these make.
[[nodiscard]] std::shared_ptr<AudioEngine> makeMacAudioEngine();
[[nodiscard]] std::shared_ptr<AudioPlayerNode> makeMacAudioPlayerNode();
[[nodiscard]] std::shared_ptr<AudioOutputHold> makeMacAudioOutputHold();

} // namespace quorvane
