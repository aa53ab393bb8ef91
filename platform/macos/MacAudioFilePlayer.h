#pragma once

#include "platform/Audio.h"

namespace quorvane {

/// See AudioService::createFilePlayer.
[[nodiscard]] std::variant<std::shared_ptr<AudioFilePlayer>, AudioError>
makeMacAudioFilePlayer(const std::filesystem::path& path);

} // namespace quorvane
