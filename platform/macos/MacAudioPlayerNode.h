#pragma once

#import <AVFAudio/AVFAudio.h>

#include "platform/Audio.h"

namespace quorvane {

/// The AVAudioPlayerNode behind a node that MacAudio made.
[[nodiscard]] AVAudioPlayerNode* playerNodeOf(AudioPlayerNode& node);

} // namespace quorvane
