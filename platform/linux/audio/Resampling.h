#pragma once

#include <memory>

#include "platform/Audio.h"

namespace quorvane {

/// The sound at the stream's rate: `sound` itself if it has that rate, else a copy that is
/// resampled in high quality. Null if it has no frames, or if there is not enough memory.
[[nodiscard]] std::shared_ptr<const PCMBuffer> atStreamRate(std::shared_ptr<const PCMBuffer> sound);

} // namespace quorvane
